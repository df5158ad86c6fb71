#include <gmock/gmock.h>

#include "app/startup_manager.h"
#include "fake_platform.h"
#include "ipc/karno_wrappper_notifier_listener.h"
#include "launcher.h"
#include "printing.h"

namespace karno {
namespace {

using test::FakePlatform;
using test::Launcher;
using test::Line;
using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;

const Line kTerminating{"INFO", "AppDelegate:: Terminating"};
const Line kAskedToQuit{"INFO", "AppDelegate[TERMINATE] Reason: User selected quit"};

// A launcher that runs its client, and an alert of the launcher's that nobody answers for a while.
class UnansweredAlert : public ::testing::Test {
 protected:
  UnansweredAlert() {
    machine.withEmbeddedBuilds().withSystem("14.5", "arm64");
    launcher.finishLaunching();
    machine.runFor(2);
  }

  // The user leaves the next alert alone for a minute after `meanwhile`, then gives the answer.
  void answerAMinuteAfter(long answer, std::function<void()> meanwhile) {
    machine.alerts.answerNext(answer, [this, meanwhile = std::move(meanwhile)] {
      meanwhile();
      machine.runFor(60);
      linesWhileUp = machine.log();
    });
  }

  FakePlatform machine;
  Launcher launcher{machine};
  std::vector<Line> linesWhileUp;
};

TEST_F(UnansweredAlert, OfACrashOutlivesTheEndOfTheClientUntilTheUserSaysNo) {
  answerAMinuteAfter(1001, [&] { machine.tasks.end(5001, 11, platform::TerminationReason::UncaughtSignal); });

  machine.postMessage("app-is-terminating-abnormally");
  machine.runFor(100);

  EXPECT_THAT(linesWhileUp,
              Contains(Line("INFO", "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated")));
  EXPECT_THAT(linesWhileUp, Not(Contains(kTerminating)));
  EXPECT_THAT(machine.log(),
              IsSupersetOf({Line("INFO",
                                 "Abnormal[TERMINATION] User elected not to restart Karno after "
                                 "terminating abnormally."),
                            kTerminating}));
}

// The end of the client has asked for the quit already, which now follows the answer: the new client is on
// its own.
TEST_F(UnansweredAlert, OfACrashOutlivesTheEndOfTheClientUntilTheUserSaysYes) {
  answerAMinuteAfter(1000, [&] { machine.tasks.end(5001, 11, platform::TerminationReason::UncaughtSignal); });

  machine.postMessage("app-is-terminating-abnormally");
  machine.runFor(100);

  EXPECT_THAT(linesWhileUp, Not(Contains(kTerminating)));
  EXPECT_THAT(machine.log(),
              IsSupersetOf({Line("INFO",
                                 "Abnormal[TERMINATION] User elected to restart Karno after terminating "
                                 "abnormally."),
                            kTerminating}));
}

TEST_F(UnansweredAlert, OfACrashHoldsUpTheQuitThatTheUserAskedTheClientFor) {
  answerAMinuteAfter(1001, [&] { machine.postMessage("user-selected-quit"); });

  machine.postMessage("app-is-terminating-abnormally");
  machine.runFor(100);

  EXPECT_THAT(linesWhileUp, Contains(kAskedToQuit));
  EXPECT_THAT(linesWhileUp, Not(Contains(kTerminating)));
  EXPECT_EQ(machine.log().back(), kTerminating);
}

TEST_F(UnansweredAlert, AboutMacFUSEHoldsUpTheQuitButNeitherThePollNorTheLaunch) {
  answerAMinuteAfter(1000, [&] {
    machine.withFuse("4.4.1");
    machine.runFor(5);
    machine.postMessage("user-selected-quit");
  });

  StartupManager::instance().informUserToDownloadFuse();
  machine.runFor(100);

  EXPECT_THAT(linesWhileUp,
              IsSupersetOf({Line("INFO", "Startup[FUSE] Fuse is installed"),
                            Line("INFO", "Main: System is okay - launching Karno"), kAskedToQuit}));
  EXPECT_THAT(linesWhileUp, Not(Contains(kTerminating)));
  EXPECT_EQ(machine.log().back(), kTerminating);
}

}  // namespace
}  // namespace karno
