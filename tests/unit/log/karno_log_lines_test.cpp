#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "log/karno_log.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;
using ::testing::SizeIs;

void logAtEveryLevel() {
  KarnoLog& log = KarnoLog::manager();
  log.logVerbose("one");
  log.logDebug("two");
  log.logInfo("three");
  log.logWarn("four");
  log.logError("five");
  log.logNet("six");
  log.logMessage("seven", "STARTUP");
}

TEST(KarnoLogLine, HasDateProcessLevelAndMessage) {
  FakePlatform machine;

  KarnoLog::manager().logInfo("AppDelegate[TERMINATE] Reason: quit");
  machine.runFor(1);

  EXPECT_THAT(machine.fullLogLines(),
              ElementsAre("2024-03-05 14:07:09:042+0100 (4242) [INFO] AppDelegate[TERMINATE] Reason: quit"));
}

TEST(KarnoLogLine, GoesToTheConsoleInTheSameForm) {
  FakePlatform machine;

  KarnoLog::manager().logError("Startup[RESTART] Failed");

  EXPECT_THAT(machine.console(),
              ElementsAre("2024-03-05 14:07:09:042+0100 (4242) [*** ERROR ***] Startup[RESTART] Failed"));
}

// A folder's name may be any bytes.
TEST(KarnoLogLine, HasAReplacementForEachByteThatIsNotUTF8) {
  FakePlatform machine;

  KarnoLog::manager().logInfo("/B\xFCro/Gr\u00FC\u00DFe");
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "/B\uFFFDro/Gr\u00FC\u00DFe")));
  EXPECT_THAT(machine.console(),
              ElementsAre("2024-03-05 14:07:09:042+0100 (4242) [INFO] /B\uFFFDro/Gr\u00FC\u00DFe"));
}

TEST(KarnoLogLine, GoesToTheConsoleBeforeItIsQueued) {
  FakePlatform machine;
  std::vector<Line> inFileThen = {Line("", "not asked")};
  machine.consoleLog.whenLogged = [&](std::string_view) {
    machine.runFor(1);
    inFileThen = machine.log();
  };

  KarnoLog::manager().logInfo("hello");
  machine.runFor(1);

  EXPECT_THAT(inFileThen, IsEmpty());
  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "hello")));
}

TEST(KarnoLogLine, EndsWithOneNewlineInTheFile) {
  FakePlatform machine;

  KarnoLog::manager().logNet("a");
  KarnoLog::manager().logNet("b");
  machine.runFor(1);

  EXPECT_EQ(machine.files.text(test::kLogFile),
            "2024-03-05 14:07:09:042+0100 (4242) [NET] a\n"
            "2024-03-05 14:07:09:042+0100 (4242) [NET] b\n");
}

TEST(KarnoLogLine, KeepsNewlinesOfTheMessage) {
  FakePlatform machine;

  KarnoLog::manager().logWarn("Object=(\n    1\n)");
  machine.runFor(1);

  EXPECT_EQ(machine.files.text(test::kLogFile),
            "2024-03-05 14:07:09:042+0100 (4242) [WARN] Object=(\n    1\n)\n");
}

// What the file has is the C string of the line.
TEST(KarnoLogLine, EndsInTheFileAtAZeroByte) {
  FakePlatform machine;

  KarnoLog::manager().logWarn(std::string("before\0after", 12));
  KarnoLog::manager().logWarn("next");
  machine.runFor(1);

  EXPECT_EQ(machine.files.text(test::kLogFile),
            "2024-03-05 14:07:09:042+0100 (4242) [WARN] before\n"
            "2024-03-05 14:07:09:042+0100 (4242) [WARN] next\n");
  EXPECT_EQ(machine.console().front(),
            std::string("2024-03-05 14:07:09:042+0100 (4242) [WARN] before\0after", 55));
}

TEST(KarnoLogLine, TakesTheMessageAsItStands) {
  FakePlatform machine;

  KarnoLog::manager().logInfo("100 % {} %@ %d {0} größer 日本");
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "100 % {} %@ %d {0} größer 日本")));
}

TEST(KarnoLogLine, CanBeEmpty) {
  FakePlatform machine;

  KarnoLog::manager().logInfo("");
  machine.runFor(1);

  EXPECT_THAT(machine.fullLogLines(), ElementsAre("2024-03-05 14:07:09:042+0100 (4242) [INFO] "));
}

TEST(KarnoLogLine, CarriesTheTimeOfTheCallNotOfTheWrite) {
  FakePlatform machine;
  static_cast<void>(KarnoLog::manager());
  machine.runFor(0.25);

  KarnoLog::manager().logInfo("at 250 ms, written at 300 ms");
  machine.runFor(1);

  EXPECT_THAT(machine.fullLogLines(),
              ElementsAre("2024-03-05 14:07:09:292+0100 (4242) [INFO] at 250 ms, written at 300 ms"));
}

TEST(KarnoLogLine, FollowsAChangeOfTheOffsetWhileTheLauncherRuns) {
  FakePlatform machine;
  using namespace std::chrono;
  machine.clock.setNow(sys_days(2024y / 3 / 31) + 59min + 59s + 999ms);  // a millisecond before summer time

  KarnoLog::manager().logInfo("winter");
  machine.runFor(0.001);
  KarnoLog::manager().logInfo("summer");

  EXPECT_THAT(machine.console(), ElementsAre("2024-03-31 01:59:59:999+0100 (4242) [INFO] winter",
                                             "2024-03-31 03:00:00:000+0200 (4242) [INFO] summer"));
}

TEST(KarnoLogLine, ReadsTheProcessIdentifierOnce) {
  FakePlatform machine;
  KarnoLog::manager().logInfo("before");

  machine.processes.current = 17;
  KarnoLog::manager().logInfo("after");

  EXPECT_THAT(machine.console(), ElementsAre("2024-03-05 14:07:09:042+0100 (4242) [INFO] before",
                                             "2024-03-05 14:07:09:042+0100 (4242) [INFO] after"));
}

TEST(KarnoLogLevels, HaveTheseWords) {
  FakePlatform machine;
  machine.withVerboseLogging(true);

  logAtEveryLevel();
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ElementsAre(Line("VERBOSE", "one"), Line("DEBUG", "two"), Line("INFO", "three"),
                                         Line("WARN", "four"), Line("*** ERROR ***", "five"),
                                         Line("NET", "six"), Line("STARTUP", "seven")));
  EXPECT_EQ(machine.console(), machine.fullLogLines());
}

TEST(KarnoLogLevels, VerboseAndDebugAreDroppedWithoutTheUserSetting) {
  FakePlatform machine;

  logAtEveryLevel();
  machine.runFor(1);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("INFO", "three"), Line("WARN", "four"), Line("*** ERROR ***", "five"),
                          Line("NET", "six"), Line("STARTUP", "seven")));
  EXPECT_EQ(machine.console(), machine.fullLogLines());
}

TEST(KarnoLogLevels, AskTheUserSettingAgainAtEveryCall) {
  FakePlatform machine;
  KarnoLog& log = KarnoLog::manager();

  log.logDebug("debug off");
  log.logVerbose("verbose off");
  machine.withVerboseLogging(true);
  log.logDebug("debug on");
  log.logVerbose("verbose on");
  machine.withVerboseLogging(false);
  log.logDebug("debug off again");
  log.logVerbose("verbose off again");

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("DEBUG", "debug on"), Line("VERBOSE", "verbose on")));
}

TEST(KarnoLogLevels, AnyTextIsPossibleThroughTheCommonPath) {
  FakePlatform machine;

  KarnoLog::manager().logMessage("message", "Some Level");

  EXPECT_THAT(machine.console(), ElementsAre("2024-03-05 14:07:09:042+0100 (4242) [Some Level] message"));
}

TEST(KarnoLogThreads, WriteTheConsoleLineOnTheCallersOwn) {
  FakePlatform machine;

  machine.onThread([] { KarnoLog::manager().logInfo("hello"); }, "caller");
  machine.runUntilIdle();

  ASSERT_THAT(machine.consoleLog.entries(), SizeIs(1));
  EXPECT_EQ(machine.consoleLog.entries()[0].thread, "caller");
}

TEST(KarnoLogThreads, NeverTouchTheFileOnTheCallersOwn) {
  FakePlatform machine;

  KarnoLog::manager().logInfo("hello");

  EXPECT_EQ(machine.files.opens(test::kLogFile), 0);
  EXPECT_FALSE(machine.files.fileExists(test::kLogFile));
}

TEST(KarnoLogThreads, KeepTheOrderOfEachCaller) {
  FakePlatform machine;
  const auto logThree = [&](const std::string& name) {
    return [&machine, name] {
      for (const char* number : {" 1", " 2", " 3"}) {
        KarnoLog::manager().logInfo(name + number);
        machine.dispatch.sleep(0.07);
      }
    };
  };

  machine.onThread(logThree("left"));
  machine.onThread(logThree("right"));
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ::testing::IsSupersetOf({Line("INFO", "left 1"), Line("INFO", "right 3")}));
  EXPECT_THAT(machine.fullLogLines(), SizeIs(6));
  EXPECT_EQ(machine.fullLogLines(), machine.console());
}

TEST(KarnoLogThreads, MayAllAskForTheOneLog) {
  FakePlatform machine;
  const KarnoLog* seen = nullptr;

  machine.onThread([&] { seen = &KarnoLog::manager(); });
  machine.runUntilIdle();

  EXPECT_EQ(seen, &KarnoLog::manager());
}

}  // namespace
}  // namespace karno
