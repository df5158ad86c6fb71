#include "karnoctl/state/story_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_platform.h"
#include "log/date_texts.h"

namespace karno::karnoctl {
namespace {

using test::FakePlatform;
using test::kLogFile;
using test::kOldLogFile;
using test::kStartOfTest;
using ::testing::IsEmpty;

constexpr const char* kStoryBeginning = "===================================================";

// As the launcher with that process identifier logs it.
std::string logged(const std::string& message, int process = 4242, platform::Date date = kStartOfTest) {
  return stringForLogDate(date) + " (" + std::to_string(process) + ") [INFO] " + message + "\n";
}

LoggedProcess read(const FakePlatform& machine) {
  return loggedProcess(machine.fileReading, 4242, kStartOfTest);
}

TEST(LoggedProcessOf, IsEmptyWithoutALog) {
  const FakePlatform machine;

  const LoggedProcess found = read(machine);

  EXPECT_TRUE(found.story.isEmpty());
  EXPECT_THAT(found.lastLines, IsEmpty());
}

TEST(LoggedProcessOf, HasTheLinesOfThatProcessAlone) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, logged(kStoryBeginning) + logged("Main: Need to install Fuse", 4243) +
                                      logged("Startup[CHECK] Using FileProvider"));

  const LoggedProcess found = read(machine);

  EXPECT_EQ(found.story.state(), LauncherState::Starts);
  EXPECT_EQ(found.lastLines.size(), 2U);
}

TEST(LoggedProcessOf, BeginsInTheFileBefore) {
  FakePlatform machine;
  machine.files.addFile(kOldLogFile,
                        logged(kStoryBeginning) + logged("Startup[LAUNCH] Launched Karno.app (pid: 4250)"));
  machine.files.addFile(kLogFile, logged("Sparkle[UPDATE] Downloaded update"));

  const LoggedProcess found = read(machine);

  EXPECT_EQ(found.story.state(), LauncherState::Updates);
  EXPECT_EQ(found.story.client, 4250);
}

TEST(LoggedProcessOf, KeepsTheLastFiveLines) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, logged("1") + logged("2") + logged("3") + logged("4") + logged("5") +
                                      logged("6") + "a further line of the message\n");

  const LoggedProcess found = read(machine);

  ASSERT_EQ(found.lastLines.size(), 5U);
  EXPECT_EQ(found.lastLines.front() + "\n", logged("2"));
  EXPECT_EQ(found.lastLines.back() + "\n", logged("6"));
}

// Identifiers are given out again.
TEST(LoggedProcessOf, IsEmptyWhereAnEarlierProcessHadTheNumber) {
  FakePlatform machine;
  const platform::Date yesterday = kStartOfTest - std::chrono::hours(24);
  machine.files.addFile(kLogFile,
                        logged(kStoryBeginning, 4242, yesterday) +
                            logged("Startup[LAUNCH] Launched Karno.app (pid: 4250)", 4242, yesterday));

  EXPECT_TRUE(read(machine).story.isEmpty());
}

TEST(LoggedProcessOf, BearsALineThatIsStillBeingWritten) {
  FakePlatform machine;
  machine.files.addFile(kLogFile,
                        logged(kStoryBeginning) + "2024-03-05 14:07:09:042+0100 (4242) [INFO] Main: Need");

  EXPECT_EQ(read(machine).story.state(), LauncherState::Starts);
}

TEST(LoggedProcessOf, BearsWhatIsNoText) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, std::string(1000, '\0') + "\n (\n () [] \n (4242) [\n(4242) [INFO]\n" +
                                      std::string(3'000'000, '\xFF') + "\n" +
                                      logged("Main: Need to install Fuse") + std::string(70'000, '['));

  EXPECT_EQ(read(machine).story.state(), LauncherState::Asks);
}

TEST(LoggedProcessOf, ReadsOnlyTheEndOfAFileBeyondAllMeasure) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "\n" + logged("Main: Need to install Fuse"));
  machine.files.setSize(kLogFile, 100'000'000);

  EXPECT_EQ(read(machine).story.state(), LauncherState::Asks);
  EXPECT_LT(machine.fileReading.bytesRead(), 40'000'000U);
}

TEST(LogLine, IsTakenApart) {
  const auto line = logLineIn("2024-03-05 14:07:09:042+0100 (4242) [*** ERROR ***] Main: a [b] (c)");

  ASSERT_TRUE(line);
  EXPECT_EQ(line->date, "2024-03-05 14:07:09:042+0100");
  EXPECT_EQ(line->processIdentifier, 4242);
  EXPECT_EQ(line->level, "*** ERROR ***");
  EXPECT_EQ(line->message, "Main: a [b] (c)");
}

TEST(LogLine, IsNoneWithoutAllOfItsParts) {
  EXPECT_FALSE(logLineIn(""));
  EXPECT_FALSE(logLineIn("a further line (4242)"));
  EXPECT_FALSE(logLineIn("now (x) [INFO] Text"));
  EXPECT_FALSE(logLineIn("now (99999999999) [INFO] Text"));
  EXPECT_FALSE(logLineIn("now (1) [INFO"));
}

}  // namespace
}  // namespace karno::karnoctl
