#include <gtest/gtest.h>

#include "fake_platform.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using test::FakePlatform;
using test::kLogFile;
using test::kOldLogFile;
using test::Terminal;

constexpr double kAWhile = 1.0;  // seconds; longer than the pause between two looks

TEST(KarnoctlLog, ShowsTheLastLines) {
  FakePlatform machine;
  Terminal terminal;
  machine.files.addFile(kLogFile, "one\ntwo\nthree\n");

  const int status = terminal.run({"log", "--lines", "2"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.out(), "two\nthree\n");
  EXPECT_EQ(terminal.err(), "");
}

TEST(KarnoctlLog, BeginsInTheFileBeforeWhenTheLogIsTooShort) {
  FakePlatform machine;
  Terminal terminal;
  machine.files.addFile(kOldLogFile, "one\ntwo\n");
  machine.files.addFile(kLogFile, "three\nfour\n");

  EXPECT_EQ(terminal.run({"log", "--lines", "3"}), 0);
  EXPECT_EQ(terminal.newOut(), "two\nthree\nfour\n");

  EXPECT_EQ(terminal.run({"log", "--lines", "2"}), 0);
  EXPECT_EQ(terminal.newOut(), "three\nfour\n");

  EXPECT_EQ(terminal.run({"log", "--lines", "all"}), 0);
  EXPECT_EQ(terminal.newOut(), "one\ntwo\nthree\nfour\n");
}

TEST(KarnoctlLog, ShowsTheFileBeforeRightAfterARotation) {
  FakePlatform machine;
  Terminal terminal;
  machine.files.addFile(kOldLogFile, "one\ntwo\n");

  EXPECT_EQ(terminal.run({"log"}), 0);

  EXPECT_EQ(terminal.out(), "one\ntwo\n");
}

TEST(KarnoctlLog, EndsALineThatIsNotFinished) {
  FakePlatform machine;
  Terminal terminal;
  machine.files.addFile(kOldLogFile, "one");
  machine.files.addFile(kLogFile, "two\nthr");

  terminal.run({"log"});

  EXPECT_EQ(terminal.out(), "one\ntwo\nthr\n");
}

TEST(KarnoctlLog, ReadsOnlyTheEndOfAHugeFile) {
  FakePlatform machine;
  Terminal terminal;
  machine.files.addFile(kLogFile, "\none\ntwo\n");
  machine.files.setSize(kLogFile, 9'000'000);

  terminal.run({"log", "--lines", "2"});

  EXPECT_EQ(terminal.out(), "one\ntwo\n");
  EXPECT_LT(machine.fileReading.bytesRead(), 100'000U);
}

TEST(KarnoctlLog, FailsWithoutALog) {
  FakePlatform machine;
  Terminal terminal;

  const int status = terminal.run({"log"});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(terminal.out(), "");
  EXPECT_EQ(terminal.err(),
            "karnoctl: there is no log at '/Users/tester/Library/Logs/Karno for macOS/"
            "karno-wrapper.log'\n");
}

TEST(KarnoctlLog, ColoursLevelsOnAScreenThatWantsThem) {
  FakePlatform machine;
  Terminal file;
  Terminal screen;
  Terminal plainScreen;
  screen.becomeScreen(true);
  plainScreen.becomeScreen(false);
  machine.files.addFile(kLogFile, "now (1) [INFO] Text\n");

  file.run({"log"});
  screen.run({"log"});
  plainScreen.run({"log"});

  EXPECT_EQ(file.out(), "now (1) [INFO] Text\n");
  EXPECT_EQ(screen.out(), "now (1) [\033[32mINFO\033[0m] Text\n");
  EXPECT_EQ(plainScreen.out(), "now (1) [INFO] Text\n");
}

TEST(KarnoctlLog, ColoursLevelsAsItIsTold) {
  FakePlatform machine;
  Terminal file;
  Terminal screen;
  screen.becomeScreen(true);
  machine.files.addFile(kLogFile, "now (1) [INFO] Text\n");

  file.run({"log", "--color=always"});
  screen.run({"log", "--color=never"});

  EXPECT_EQ(file.out(), "now (1) [\033[32mINFO\033[0m] Text\n");
  EXPECT_EQ(screen.out(), "now (1) [INFO] Text\n");
}

struct WrongWord {
  const char* word;
  const char* complaint;
};

class WrongKarnoctlLog : public testing::TestWithParam<WrongWord> {};

TEST_P(WrongKarnoctlLog, SaysWhatIsWrong) {
  FakePlatform machine;
  Terminal terminal;

  EXPECT_EQ(terminal.run({"log", GetParam().word}), 64);

  EXPECT_EQ(terminal.err(),
            "karnoctl: " + std::string(GetParam().complaint) + "\nTry \"karnoctl help log\".\n");
}

INSTANTIATE_TEST_SUITE_P(
    Each, WrongKarnoctlLog,
    testing::Values(WrongWord{"--lines=-7", "'-7' is no number of lines"},
                    WrongWord{"--lines=7x", "'7x' is no number of lines"},
                    WrongWord{"--lines=99999999999999999999", "'99999999999999999999' is no number of lines"},
                    WrongWord{"--lines", "--lines needs a value"},
                    WrongWord{"--color=red", "--color takes auto, always or never, not 'red'"},
                    WrongWord{"--folow", "unknown option '--folow'; did you mean '--follow'?"},
                    WrongWord{"today", "log takes no argument 'today'"}));

TEST(KarnoctlLog, ShowsFiftyLinesByItself) {
  FakePlatform machine;
  Terminal terminal;
  std::string fifty;
  for (int number = 0; number < 50; ++number) fifty += std::to_string(number) + '\n';
  machine.files.addFile(kLogFile, "one more\n" + fifty);

  EXPECT_EQ(terminal.run({"log"}), 0);

  EXPECT_EQ(terminal.out(), fifty);
}

TEST(KarnoctlLog, ShowsNoLineWhereNoneIsWanted) {
  FakePlatform machine;
  Terminal terminal;
  machine.files.addFile(kLogFile, "one\n");

  EXPECT_EQ(terminal.run({"log", "--lines=0"}), 0);

  EXPECT_EQ(terminal.out(), "");
}

// Somebody who watches the log of this machine, until the test ends.
class Watcher {
 public:
  explicit Watcher(FakePlatform& machine, std::vector<std::string> arguments = {"log", "--follow"})
      : machine_(machine) {
    machine.onThread([this, words = std::move(arguments)] { status_ = terminal_.run(words); }, "karnoctl");
    machine.runFor(kAWhile);
  }

  // What has been printed since the last look, a while later.
  std::string sees() {
    machine_.runFor(kAWhile);
    return terminal_.newOut();
  }

  std::string err() const { return terminal_.err(); }

  std::optional<int> closeOutput() {
    terminal_.close();
    machine_.runFor(kAWhile);
    return status_;
  }

 private:
  FakePlatform& machine_;
  Terminal terminal_;
  std::optional<int> status_;
};

void append(FakePlatform& machine, const std::string& line) {
  const auto stream = machine.files.openForAppending(kLogFile);
  stream->writeLine(line);
  stream->flush();
}

TEST(KarnoctlLogFollowing, ShowsTheEndAndWhatIsLoggedLater) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "one\ntwo\n");
  Watcher watcher(machine, {"log", "--follow", "--lines=1"});
  EXPECT_EQ(watcher.sees(), "two\n");

  append(machine, "three");
  EXPECT_EQ(watcher.sees(), "three\n");

  append(machine, "four");
  EXPECT_EQ(watcher.sees(), "four\n");
}

TEST(KarnoctlLogFollowing, GoesOnThroughARotation) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "one\n");
  Watcher watcher(machine);
  EXPECT_EQ(watcher.sees(), "one\n");

  append(machine, "two");
  machine.files.move(kLogFile, kOldLogFile);
  EXPECT_EQ(watcher.sees(), "two\n");

  append(machine, "three");
  EXPECT_EQ(watcher.sees(), "three\n");
}

TEST(KarnoctlLogFollowing, EndsTheLineThatWillNeverBeFinished) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "one\ntw");
  Watcher watcher(machine);
  EXPECT_EQ(watcher.sees(), "one\n");

  machine.files.overwrite(kLogFile, "new\n");

  EXPECT_EQ(watcher.sees(), "tw\nnew\n");
}

TEST(KarnoctlLogFollowing, WaitsForALogThatIsNotThereYet) {
  FakePlatform machine;
  machine.files.addDirectory(test::kLogFolder);
  Watcher watcher(machine);
  EXPECT_EQ(watcher.sees(), "");
  EXPECT_EQ(watcher.err(),
            "karnoctl: waiting for a log at '/Users/tester/Library/Logs/Karno for macOS/"
            "karno-wrapper.log'\n");

  append(machine, "one");

  EXPECT_EQ(watcher.sees(), "one\n");
}

TEST(KarnoctlLogFollowing, EndsWhenNothingCanBePrintedAnyMore) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "one\n");
  Watcher watcher(machine);

  EXPECT_EQ(watcher.closeOutput(), 1);
}

}  // namespace
}  // namespace karno::karnoctl
