#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "fake_platform.h"
#include "terminal.h"
#include "written_log.h"

namespace karno::karnoctl {
namespace {

using nlohmann::json;
using test::WrittenLog;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kSent = "/Users/tester/Downloads/sent.log";

class KarnoctlDiagnose : public testing::Test {
 protected:
  // What the verb ends with about a file that was sent.
  int ofSent(const std::string& text) {
    machine_.files.addFile(kSent, text);
    return terminal_.run({"diagnose", kSent});
  }

  int ofOwn(const WrittenLog& log) {
    machine_.files.addFile(test::kLogFile, log.text());
    return terminal_.run({"diagnose"});
  }

  test::FakePlatform machine_;
  test::Terminal terminal_;
};

WrittenLog healthyLog() { return WrittenLog().beginsToRun().launches(); }

TEST_F(KarnoctlDiagnose, SaysThatNothingIsWrong) {
  const int status = ofOwn(WrittenLog().beginsToRun().launches().quits("user-selected-quit"));

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal_.out(),
            "Karno 3.2.1, process 4242, started 2024-03-05 14:07:09:042+0100, has quit: user-selected-quit\n"
            "The log shows nothing wrong.\n");
}

TEST_F(KarnoctlDiagnose, SaysWhatIsWrongAndWhatToDo) {
  const int status = ofSent(WrittenLog()
                                .beginsToRun()
                                .says("Fuse[SYSTEM] CPU: 'arm64'")
                                .says("Fuse[SYSTEM] O/S Version: '14.5'")
                                .says("Fuse[SYSTEM] Fuse is not installed")
                                .says("Startup[FUSE] Waiting for Fuse to install")
                                .text());

  EXPECT_EQ(status, 1);
  EXPECT_EQ(
      terminal_.out(),
      "Karno 3.2.1, process 4242, started 2024-03-05 14:07:09:042+0100. What it was at last: waits for "
      "macFUSE\n"
      "\n"
      "The chosen build needs macFUSE, which is not installed.\n"
      "(the launcher has been waiting for it, macFUSE 4.4.1 or later would do)\n"
      "    2024-03-05 14:07:09:042+0100 (4242) [INFO] Fuse[SYSTEM] Fuse is not installed\n"
      "Install one that will do, or change macOS where none does. A launcher that waits for it goes on by "
      "itself within two seconds.\n"
      "\n"
      "Note: Whether this launcher still runs cannot be told from the log alone.\n");
}

TEST_F(KarnoctlDiagnose, AsksTheProcessesWhetherTheLauncherStillRuns) {
  machine_.processTable.remove(test::FakeProcessTable::kLauncher);

  const int status = ofOwn(healthyLog());

  EXPECT_EQ(status, 1);
  EXPECT_THAT(terminal_.out(), AllOf(HasSubstr(", has ended without a word. What it was at: runs\n"),
                                     HasSubstr("The launcher ended without a word: ")));
}

TEST_F(KarnoctlDiagnose, FindsALauncherThatRunsHealthy) {
  machine_.processTable.add(4242, {.executablePath = "/Applications/Karno.app/Contents/MacOS/Karno"});

  EXPECT_EQ(ofOwn(healthyLog()), 0);

  EXPECT_THAT(terminal_.out(), HasSubstr(", runs. What it is at: runs\nThe log shows nothing wrong.\n"));
}

TEST_F(KarnoctlDiagnose, BeginsInTheFileBefore) {
  machine_.files.addFile(test::kOldLogFile, WrittenLog().beginsToRun().text());

  EXPECT_EQ(ofOwn(WrittenLog().launches().quits("user-selected-quit")), 0);

  EXPECT_THAT(terminal_.out(), StartsWith("Karno 3.2.1, process 4242, started "));
}

TEST_F(KarnoctlDiagnose, CannotReadALogThatIsNotThere) {
  EXPECT_EQ(terminal_.run({"diagnose", kSent}), 2);

  EXPECT_THAT(
      terminal_.err(),
      AllOf(StartsWith("karnoctl: '/Users/tester/Downloads/sent.log' cannot be read ("), EndsWith(")\n")));
  EXPECT_THAT(terminal_.out(), IsEmpty());
}

TEST_F(KarnoctlDiagnose, CannotReadWhatIsNoLog) {
  EXPECT_EQ(ofSent(""), 2);
  EXPECT_EQ(ofSent(std::string(1'000'000, '\0')), 2);
  EXPECT_EQ(ofSent("Nov 23 00:21:54 mac kernel: hello\n"), 2);
  EXPECT_EQ(ofSent(WrittenLog().says("Server started").text()), 2);

  EXPECT_THAT(terminal_.err(), EndsWith("' has no line of a launcher's log\n"));
}

TEST_F(KarnoctlDiagnose, SaysThatTheLogEndsWithinALine) {
  ofSent(healthyLog().text() + "2024-03-05 14:07:09:042+0100 (4242) [INFO] Fuse[SYSTEM] Fuse is not ins");

  EXPECT_THAT(
      terminal_.out(),
      HasSubstr("Note: '/Users/tester/Downloads/sent.log' ends within a line, which does not count.\n"));
}

TEST_F(KarnoctlDiagnose, ReadsOnlyTheEndOfAFileBeyondAllMeasureAndSaysSo) {
  machine_.files.addFile(kSent, "\n" + healthyLog().text());
  machine_.files.setSize(kSent, 100'000'000);

  const int status = terminal_.run({"diagnose", kSent});

  EXPECT_EQ(status, 0);
  EXPECT_THAT(terminal_.out(),
              HasSubstr("Note: Of '/Users/tester/Downloads/sent.log' only the last 32 MB were read.\n"));
  EXPECT_LT(machine_.fileReading.bytesRead(), 40'000'000U);
}

TEST_F(KarnoctlDiagnose, ReadsALogWithTheNewlinesOfAnotherSystem) {
  std::string text = WrittenLog().beginsToRun().launches().quits("user-selected-quit").text();
  for (std::size_t i = text.find('\n'); i != std::string::npos; i = text.find('\n', i + 2))
    text.insert(i, "\r");

  EXPECT_EQ(ofSent(text), 0);

  EXPECT_THAT(terminal_.out(), HasSubstr(", has quit: user-selected-quit\n"));
}

// The names in a log are others' to choose.
TEST_F(KarnoctlDiagnose, ShowsNoControlCharacterOfTheLog) {
  ofSent(WrittenLog()
             .beginsToRun()
             .says("Karno Version: \033[31m")
             .says("Fuse[SYSTEM] Fuse Version: '\033[2J'")
             .says("FuseRequirements: System requirements not met")
             .says("Sparkle[FEED] Cannot parse url in \033]0;x\a")
             .quits("\033[0m")
             .text());

  EXPECT_THAT(terminal_.out(), Not(HasSubstr("\033")));
}

TEST_F(KarnoctlDiagnose, ShowsNoControlCharacterOfTheFilesName) {
  machine_.files.addFile("/Users/tester/\033[31m.log", healthyLog().text() + "2024-03-05");

  terminal_.run({"diagnose", "/Users/tester/\033[31m.log"});

  EXPECT_THAT(terminal_.out(), HasSubstr("Note: '/Users/tester/^[[31m.log' ends within a line, "));
}

TEST_F(KarnoctlDiagnose, TellsScriptsTheSame) {
  machine_.files.addFile(kSent, WrittenLog().beginsToRun().says("Fuse[SYSTEM] Fuse is not installed").text());

  const int status = terminal_.run({"diagnose", "--json", kSent});

  const json found = json::parse(terminal_.out());
  EXPECT_EQ(status, 1);
  EXPECT_EQ(found["version"], 1);
  EXPECT_EQ(found["process"], 4242);
  EXPECT_EQ(found["runs"], nullptr);
  EXPECT_EQ(found["state"], "starts");
  EXPECT_EQ(found["causes"].size(), 1U);
  EXPECT_EQ(found["causes"][0]["name"], "macfuse-missing");
  EXPECT_THAT(found["notes"].get<std::vector<std::string>>(), ElementsAre(HasSubstr("cannot be told")));
}

TEST_F(KarnoctlDiagnose, LeavesNoTrace) {
  ofSent(healthyLog().text());

  EXPECT_FALSE(machine_.files.fileExists(test::kLogFolder));
  EXPECT_TRUE(machine_.settings().writes.empty());
  EXPECT_TRUE(machine_.console().empty());
}

}  // namespace
}  // namespace karno::karnoctl
