#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "log/karno_log.h"

namespace karno {
namespace {

using namespace std::chrono_literals;
using karno::test::ElementsAre;
using platform::Date;
using test::FakePlatform;
using test::kLogFolder;
using test::kStartOfTest;
using test::Line;
using ::testing::IsEmpty;

constexpr std::chrono::seconds kFourteenDays{1'209'600};

std::string inLogFolder(const std::string& name) { return std::string(kLogFolder) + "/" + name; }

void addLog(FakePlatform& machine, const std::string& name, std::chrono::nanoseconds age) {
  machine.files.addFile(inLogFolder(name), "text\n", kStartOfTest - age);
}

// What start() says after its banner of four lines.
std::vector<Line> afterBanner(const FakePlatform& machine) {
  std::vector<Line> lines = machine.consoleMessages();
  lines.erase(lines.begin(), lines.begin() + 4);
  return lines;
}

TEST(OldLogCleanup, RemovesALogOfFourteenDaysAndASecond) {
  FakePlatform machine;
  addLog(machine, "it.vantul.Karno 2024-02-20.log", kFourteenDays + 1s);

  KarnoLog::manager().start();

  EXPECT_THAT(
      afterBanner(machine),
      ElementsAre(Line("STARTUP",
                       "KarnoLog[Clean] Removing old lumberjack log: 'it.vantul.Karno 2024-02-20.log' "
                       "(age: 1209601 seconds)")));
  EXPECT_FALSE(machine.files.fileExists(inLogFolder("it.vantul.Karno 2024-02-20.log")));
}

TEST(OldLogCleanup, KeepsALogOfExactlyFourteenDays) {
  FakePlatform machine;
  machine.withVerboseLogging(true);
  addLog(machine, "it.vantul.Karno.log", kFourteenDays);

  KarnoLog::manager().start();

  EXPECT_THAT(
      afterBanner(machine),
      ElementsAre(Line("DEBUG", "KarnoLog[Clean] Skipping recent lumberjack log: 'it.vantul.Karno.log'")));
  EXPECT_TRUE(machine.files.fileExists(inLogFolder("it.vantul.Karno.log")));
}

TEST(OldLogCleanup, TellsTheAgeWithoutItsFraction) {
  FakePlatform machine;
  addLog(machine, "it.vantul.Karno.log", kFourteenDays + 999ms);

  KarnoLog::manager().start();

  EXPECT_THAT(afterBanner(machine),
              ElementsAre(Line("STARTUP",
                               "KarnoLog[Clean] Removing old lumberjack log: 'it.vantul.Karno.log' (age: "
                               "1209600 seconds)")));
}

TEST(OldLogCleanup, KeepsALogFromTheFuture) {
  FakePlatform machine;
  addLog(machine, "it.vantul.Karno.log", -kFourteenDays * 2);

  KarnoLog::manager().start();

  EXPECT_THAT(afterBanner(machine), IsEmpty());
  EXPECT_TRUE(machine.files.fileExists(inLogFolder("it.vantul.Karno.log")));
}

TEST(OldLogCleanup, LeavesTheLaunchersOwnLogsAlone) {
  FakePlatform machine;
  machine.withVerboseLogging(true);
  addLog(machine, "karno-wrapper.log", kFourteenDays * 10);
  addLog(machine, "karno-wrapper.old.log", kFourteenDays * 10);

  KarnoLog::manager().start();

  EXPECT_THAT(
      afterBanner(machine),
      ElementsAre(Line("DEBUG", "KarnoLog[Clean] Skipping non-lumberjack file: 'karno-wrapper.log'"),
                  Line("DEBUG", "KarnoLog[Clean] Skipping non-lumberjack file: 'karno-wrapper.old.log'")));
  EXPECT_TRUE(machine.files.fileExists(test::kLogFile));
  EXPECT_TRUE(machine.files.fileExists(test::kOldLogFile));
}

TEST(OldLogCleanup, ComparesThePrefixByCase) {
  FakePlatform machine;
  machine.withVerboseLogging(true);
  addLog(machine, "It.vantul.Karno.log", kFourteenDays * 2);

  KarnoLog::manager().start();

  EXPECT_THAT(
      afterBanner(machine),
      ElementsAre(Line("DEBUG", "KarnoLog[Clean] Skipping non-lumberjack file: 'It.vantul.Karno.log'")));
}

TEST(OldLogCleanup, WantsThePrefixAtTheBeginning) {
  FakePlatform machine;
  addLog(machine, "copy of it.vantul.Karno.log", kFourteenDays * 2);

  KarnoLog::manager().start();

  EXPECT_TRUE(machine.files.fileExists(inLogFolder("copy of it.vantul.Karno.log")));
}

TEST(OldLogCleanup, TakesThePrefixAloneAndWithMoreLetters) {
  FakePlatform machine;
  addLog(machine, "it.vantul.Karno", kFourteenDays * 2);
  addLog(machine, "it.vantul.KarnoWrapper 1.log", kFourteenDays * 2);

  KarnoLog::manager().start();

  EXPECT_FALSE(machine.files.fileExists(inLogFolder("it.vantul.Karno")));
  EXPECT_FALSE(machine.files.fileExists(inLogFolder("it.vantul.KarnoWrapper 1.log")));
}

TEST(OldLogCleanup, SkipsAFolderWithThePrefixAndAllItHolds) {
  FakePlatform machine;
  machine.withVerboseLogging(true);
  addLog(machine, "it.vantul.Karno.d/it.vantul.Karno.log", kFourteenDays * 2);

  KarnoLog::manager().start();

  EXPECT_THAT(afterBanner(machine),
              ElementsAre(Line("DEBUG", "KarnoLog[Clean] Skipping directory: 'it.vantul.Karno.d'")));
  EXPECT_TRUE(machine.files.fileExists(inLogFolder("it.vantul.Karno.d/it.vantul.Karno.log")));
}

class OldLogThatIsNoFile : public ::testing::TestWithParam<platform::FileType> {};

TEST_P(OldLogThatIsNoFile, IsRemovedAsAFileIs) {
  FakePlatform machine;
  machine.files.addEntry(inLogFolder("it.vantul.Karno.log"), GetParam(), kStartOfTest - kFourteenDays * 2);

  KarnoLog::manager().start();

  EXPECT_THAT(afterBanner(machine),
              ElementsAre(Line("STARTUP",
                               "KarnoLog[Clean] Removing old lumberjack log: 'it.vantul.Karno.log' (age: "
                               "2419200 seconds)")));
  EXPECT_FALSE(machine.files.fileExists(inLogFolder("it.vantul.Karno.log")));
}

INSTANTIATE_TEST_SUITE_P(OldLogCleanup, OldLogThatIsNoFile,
                         ::testing::Values(platform::FileType::SymbolicLink, platform::FileType::Other));

TEST(OldLogCleanup, GoesThroughTheFolderInItsOrder) {
  FakePlatform machine;
  machine.withVerboseLogging(true);
  addLog(machine, "a.txt", 0s);
  addLog(machine, "it.vantul.Karno 1.log", kFourteenDays * 2);
  addLog(machine, "it.vantul.Karno 2.log", 1s);
  addLog(machine, "z/inside", 0s);

  KarnoLog::manager().start();

  EXPECT_THAT(
      afterBanner(machine),
      ElementsAre(Line("DEBUG", "KarnoLog[Clean] Skipping non-lumberjack file: 'a.txt'"),
                  Line("STARTUP",
                       "KarnoLog[Clean] Removing old lumberjack log: 'it.vantul.Karno 1.log' (age: 2419200 "
                       "seconds)"),
                  Line("DEBUG", "KarnoLog[Clean] Skipping recent lumberjack log: 'it.vantul.Karno 2.log'"),
                  Line("DEBUG", "KarnoLog[Clean] Skipping directory: 'z'")));
}

TEST(OldLogCleanup, LogsOnlyRemovalsWithoutVerboseLogging) {
  FakePlatform machine;
  addLog(machine, "a.txt", 0s);
  addLog(machine, "it.vantul.Karno 1.log", kFourteenDays * 2);
  addLog(machine, "it.vantul.Karno 2.log", 1s);
  addLog(machine, "z/inside", 0s);

  KarnoLog::manager().start();

  EXPECT_THAT(afterBanner(machine),
              ElementsAre(Line("STARTUP",
                               "KarnoLog[Clean] Removing old lumberjack log: 'it.vantul.Karno 1.log' (age: "
                               "2419200 seconds)")));
}

TEST(OldLogCleanup, SaysNothingWhenARemovalFails) {
  FakePlatform machine;
  addLog(machine, "it.vantul.Karno 1.log", kFourteenDays * 2);
  addLog(machine, "it.vantul.Karno 2.log", kFourteenDays * 2);
  machine.files.failRemove(inLogFolder("it.vantul.Karno 1.log"), EACCES);

  KarnoLog::manager().start();

  EXPECT_THAT(afterBanner(machine),
              ElementsAre(Line("STARTUP",
                               "KarnoLog[Clean] Removing old lumberjack log: 'it.vantul.Karno 1.log' (age: "
                               "2419200 seconds)"),
                          Line("STARTUP",
                               "KarnoLog[Clean] Removing old lumberjack log: 'it.vantul.Karno 2.log' (age: "
                               "2419200 seconds)")));
  EXPECT_FALSE(machine.files.fileExists(inLogFolder("it.vantul.Karno 2.log")));
}

TEST(OldLogCleanup, SaysNothingWhenTheFolderCannotBeRead) {
  FakePlatform machine;
  machine.withVerboseLogging(true);
  addLog(machine, "it.vantul.Karno 1.log", kFourteenDays * 2);
  machine.files.failRead(kLogFolder, EACCES);

  KarnoLog::manager().start();

  EXPECT_THAT(afterBanner(machine), IsEmpty());
}

TEST(OldLogCleanup, IsDoneWhenTheStartReturns) {
  FakePlatform machine;
  addLog(machine, "it.vantul.Karno.log", kFourteenDays * 2);
  std::string thread;

  machine.onThread([] { KarnoLog::manager().start(); }, "starter");
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleLog.entries().back().thread, "starter");
}

}  // namespace
}  // namespace karno
