#include <gmock/gmock.h>

#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "ipc/karno_wrappper_notifier_listener.h"
#include "ipc/wrapper_protocol.h"
#include "listener.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using test::Line;
using test::Listener;
using ::testing::IsEmpty;

constexpr const char* kWrapperName = "it.vantul.Karno.KarnoWrapperNotification";

const platform::Alert kCrashAlert{
    .style = platform::AlertStyle::Critical,
    .messageText = "Whoops!",
    .informativeText = "Karno has crashed.",
    .buttons = {{.title = "Ja", .keyEquivalent = ""}, {.title = "Nein", .keyEquivalent = "\033"}}};

TEST(WrapperProtocol, HasTheseWords) {
  EXPECT_EQ(kWrapperNotificationName, "it.vantul.Karno.KarnoWrapperNotification");
  EXPECT_EQ(kWrapperNotificationObject, "it.vantul.Karno.KarnoWrapperNotification");
  EXPECT_EQ(kWrapperMessageKey, "message");
  EXPECT_EQ(kWrapperReasonKey, "reason");
  EXPECT_THAT(
      kWrapperMessages,
      testing::ElementsAre("check-for-updates", "enable-automatic-updates", "disable-automatic-updates",
                           "user-selected-quit", "app-is-terminating", "app-is-terminating-abnormally",
                           "app-needs-restart", "restart-wrapper-with-fuse",
                           "restart-wrapper-with-file-provider", "restart-wrapper"));
}

TEST_F(Listener, QuitsWhenTheUserSelectedQuit) {
  machine.postMessage("user-selected-quit");
  machine.runFor(6);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "Notify[LISTEN] Received 'user-selected-quit'"),
                                         Line("INFO", "AppDelegate[TERMINATE] Reason: User selected quit")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(Listener, QuitsAtTheUsersWishAlsoDuringAnUpdate) {
  machine.updater.inSession = true;

  machine.postMessage("user-selected-quit");
  machine.runFor(6);

  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(Listener, QuitsWhenTheApplicationIsTerminating) {
  machine.postMessage("app-is-terminating");
  machine.runFor(6);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received 'app-is-terminating'"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Karno.app is terminated")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(Listener, StaysWhenTheApplicationIsTerminatingDuringAnUpdate) {
  machine.updater.inSession = true;

  machine.postMessage("app-is-terminating");
  machine.runFor(6);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received 'app-is-terminating'"),
                          Line("INFO", "Notify[LISTEN] Upgrade in progress - Karno.app has terminated.")));
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST_F(Listener, StaysWhenTheApplicationIsTerminatingAbnormallyDuringAnUpdate) {
  machine.updater.canCheck = false;

  machine.postMessage("app-is-terminating-abnormally");
  machine.runFor(6);

  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("INFO", "Notify[LISTEN] Received 'app-is-terminating-abnormally'"),
                  Line("INFO", "Notify[LISTEN] Upgrade in progress - Karno has terminated abnormally.")));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(Listener, AsksWhetherToRestartAfterACrashAndQuitsOnNo) {
  machine.alerts.answerNext(1001);

  machine.postUserInfo({{"message", "app-is-terminating-abnormally"}, {"reason", "signal 11"}});
  machine.runFor(6);

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kCrashAlert));
  EXPECT_THAT(
      machine.log(),
      ElementsAre(
          Line("INFO", "Notify[LISTEN] Received 'app-is-terminating-abnormally'"),
          Line("*** ERROR ***", "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=signal 11)"),
          Line("INFO",
               "Abnormal[TERMINATION] User elected not to restart Karno after terminating abnormally."),
          Line("INFO", "AppDelegate[TERMINATE] Reason: User selected quit for crash")));
  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
}

TEST_F(Listener, LaunchesTheApplicationAgainOnYes) {
  machine.alerts.answerNext(1000);

  machine.postUserInfo({{"message", "app-is-terminating-abnormally"}, {"reason", 6}});
  machine.runFor(6);

  EXPECT_THAT(
      machine.log(),
      ElementsAre(
          Line("INFO", "Notify[LISTEN] Received 'app-is-terminating-abnormally'"),
          Line("*** ERROR ***", "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=6)"),
          Line("INFO", "Abnormal[TERMINATION] User elected to restart Karno after terminating abnormally."),
          Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)"),
          Line("INFO", "Startup[LAUNCH] Launching Karno.app"),
          Line("INFO", "Startup[LAUNCH] Launched Karno.app (pid: 5001)"),
          Line("INFO", "Sparkle[START] Starting Up")));
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST_F(Listener, TakesAnyOtherAnswerAsNo) {
  machine.alerts.answerNext(-1000);

  machine.postMessage("app-is-terminating-abnormally");
  machine.runFor(6);

  EXPECT_EQ(machine.application.terminations(), 1);
  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
}

TEST_F(Listener, LogsAMissingReasonAndAsksAllTheSame) {
  machine.postMessage("app-is-terminating-abnormally");
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleMessages().at(1),
            Line("*** ERROR ***", "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=(null))"));
  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kCrashAlert));
}

TEST_F(Listener, ShowsTheCrashDialogOnlyAfterTheHandlerHasReturned) {
  KarnoWrappperNotifierListener::manager().receivedNotification(
      {.name = kWrapperName,
       .object = kWrapperName,
       .userInfo = {{"message", "app-is-terminating-abnormally"}}});
  const auto shownAtReturn = machine.alerts.shown();
  machine.runUntilIdle();

  EXPECT_THAT(shownAtReturn, IsEmpty());
  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kCrashAlert));
}

TEST_F(Listener, ShowsTheCrashDialogOnceTheMainDispatchQueueIsDoneWithItsBlock) {
  std::vector<platform::Alert> shownWhileAtWork;
  machine.dispatch.mainQueue().async([&] {
    machine.postMessage("app-is-terminating-abnormally");
    machine.runFor(1);
    shownWhileAtWork = machine.alerts.shown();
  });

  machine.runUntilIdle();

  EXPECT_THAT(shownWhileAtWork, IsEmpty());
  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kCrashAlert));
}

TEST_F(Listener, ShowsTheCrashDialogThroughTheMainOperationQueue) {
  machine.postMessage("app-is-terminating-abnormally");
  machine.runUntilIdle();

  EXPECT_EQ(machine.dispatch.mainSubmissions().at(0), "main operation queue");
}

class RestartFlag : public Listener, public ::testing::WithParamInterface<bool> {
 protected:
  RestartFlag() { StartupManager::instance().setRestartingEmbeddedKarnoApp(GetParam()); }
};

TEST_P(RestartFlag, DoesNotKeepTheUserFromQuitting) {
  machine.postMessage("user-selected-quit");
  machine.runFor(6);

  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_P(RestartFlag, DoesNotKeepTheLauncherFromFollowingTheApplication) {
  machine.postMessage("app-is-terminating");
  machine.runFor(6);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received 'app-is-terminating'"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Karno.app is terminated")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_P(RestartFlag, DoesNotKeepTheCrashDialogAway) {
  machine.postMessage("app-is-terminating-abnormally");
  machine.runUntilIdle();

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kCrashAlert));
}

TEST_P(RestartFlag, StaysAsItIsWhenTheUserHasTheApplicationLaunchedAfterACrash) {
  std::vector<bool> flags;
  const auto look = [&] { flags.push_back(StartupManager::instance().restartingEmbeddedKarnoApp()); };
  machine.whenLogged(Line("INFO", "Startup[LAUNCH] Launching Karno.app"), look);
  machine.alerts.answerNext(1000);

  machine.postMessage("app-is-terminating-abnormally");
  machine.runFor(6);
  look();

  EXPECT_THAT(flags, ElementsAre(GetParam(), GetParam()));
}

INSTANTIATE_TEST_SUITE_P(SetOrNot, RestartFlag, ::testing::Bool());

class ListenerOnMessage : public Listener, public ::testing::WithParamInterface<std::string_view> {};

TEST_P(ListenerOnMessage, AnswersNothing) {
  machine.postMessage(std::string(GetParam()));
  machine.runFor(10);

  EXPECT_EQ(machine.consoleMessages().at(0),
            Line("INFO", "Notify[LISTEN] Received '" + std::string(GetParam()) + "'"));
  EXPECT_EQ(machine.notifications.postCount(), 1U);
}

INSTANTIATE_TEST_SUITE_P(EveryOne, ListenerOnMessage, ::testing::ValuesIn(kWrapperMessages));

class ListenerOnMessageThatNoUpdateMatters : public Listener,
                                             public ::testing::WithParamInterface<std::string_view> {};

TEST_P(ListenerOnMessageThatNoUpdateMatters, DoesNotAskForOne) {
  machine.postMessage(std::string(GetParam()));
  machine.runFor(10);

  EXPECT_THAT(machine.updater.questions, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Messages, ListenerOnMessageThatNoUpdateMatters,
                         ::testing::Values(kEnableAutomaticUpdates, kDisableAutomaticUpdates,
                                           kUserSelectedQuit, kRestartWrapperWithFuse,
                                           kRestartWrapperWithFileProvider, kRestartWrapper, "hello", ""));

// The update manager's own question, and none of the listener's before it.
TEST_F(Listener, LeavesItToTheUpdateManagerToAskAboutASessionBeforeACheck) {
  machine.postMessage("check-for-updates");
  machine.runUntilIdle();

  EXPECT_THAT(machine.updater.questions, ElementsAre("sessionInProgress"));
}

TEST_F(Listener, GoesOnListeningWhileTheCrashDialogIsUp) {
  std::vector<Line> linesWhileUp;
  machine.alerts.answerNext(1001, [&] {
    machine.postMessage("hello");
    machine.runFor(1);
    linesWhileUp = machine.log();
  });

  machine.postMessage("app-is-terminating-abnormally");
  machine.runFor(10);

  EXPECT_THAT(linesWhileUp, ::testing::Contains(Line("INFO", "Notify[LISTEN] Received 'hello'")));
}

TEST_F(Listener, AsksAboutTheUpdateAtThatMoment) {
  machine.updater.inSession = true;
  machine.postMessage("app-is-terminating");
  machine.runFor(6);
  const int during = machine.application.terminations();

  machine.updater.inSession = false;
  machine.postMessage("app-is-terminating");
  machine.runFor(6);

  EXPECT_EQ(during, 0);
  EXPECT_EQ(machine.application.terminations(), 1);
}

struct Unknown {
  Value::Dictionary userInfo;
  std::string printed;
};

void PrintTo(const Unknown& unknown, std::ostream* out) { *out << unknown.printed; }

class ListenerOnUnknownMessage : public ::testing::TestWithParam<Unknown> {};

TEST_P(ListenerOnUnknownMessage, LogsItAsAWarningAndDoesNothing) {
  FakePlatform machine;
  KarnoWrappperNotifierListener::manager().start();

  machine.postUserInfo(GetParam().userInfo);
  machine.runFor(10);

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received '" + GetParam().printed + "'"),
                          Line("WARN", "Notify[LISTEN] Received an unknown notification '" +
                                           GetParam().printed + "'")));
  EXPECT_EQ(machine.application.activations(), 0);
  EXPECT_EQ(machine.application.terminations(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, ListenerOnUnknownMessage,
    ::testing::Values(Unknown{{}, "(null)"}, Unknown{{{"reason", "x"}}, "(null)"},
                      Unknown{{{"Message", "user-selected-quit"}}, "(null)"}, Unknown{{{"message", ""}}, ""},
                      Unknown{{{"message", "hello"}}, "hello"},
                      Unknown{{{"message", "CHECK-FOR-UPDATES"}}, "CHECK-FOR-UPDATES"},
                      Unknown{{{"message", "User-Selected-Quit"}}, "User-Selected-Quit"},
                      Unknown{{{"message", "user-selected-quit "}}, "user-selected-quit "},
                      Unknown{{{"message", 42}}, "42"}, Unknown{{{"message", true}}, "1"},
                      Unknown{{{"message", Value::Array{"user-selected-quit"}}},
                              "(\n    \"user-selected-quit\"\n)"}));

TEST_F(Listener, ComesToTheFrontBeforeItChecksForUpdates) {
  int checksAtActivation = -1;
  machine.application.whenActivated = [&] { checksAtActivation = machine.updater.checks; };

  machine.postMessage("check-for-updates");
  machine.runUntilIdle();

  EXPECT_EQ(checksAtActivation, 0);
  EXPECT_EQ(machine.application.activations(), 1);
  EXPECT_EQ(machine.updater.checks, 1);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received 'check-for-updates'"),
                          Line("INFO",
                               "Sparkle[CHECK] Checking for updates "
                               "(https://updates.vantul.it/updates/macos/appcast.eddsa.xml)")));
}

TEST_F(Listener, IgnoresARequestToCheckDuringASession) {
  machine.updater.inSession = true;

  machine.postMessage("check-for-updates");
  machine.runUntilIdle();

  EXPECT_EQ(machine.application.activations(), 1);
  EXPECT_EQ(machine.updater.checks, 0);
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("WARN", "Sparkle[CHECK] Ignoring check for updates when already in progress"));
}

TEST_F(Listener, SwitchesAutomaticUpdatesOnAndOff) {
  machine.postMessage("enable-automatic-updates");
  machine.runUntilIdle();
  machine.postMessage("disable-automatic-updates");
  machine.runUntilIdle();

  EXPECT_THAT(machine.updater.automaticChecks, ElementsAre(true, false));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received 'enable-automatic-updates'"),
                          Line("INFO", "Sparkle[CONFIG] Check updates automatically=1"),
                          Line("INFO", "Notify[LISTEN] Received 'disable-automatic-updates'"),
                          Line("INFO", "Sparkle[CONFIG] Check updates automatically=0")));
}

TEST_F(Listener, RestartsTheApplicationWhenItNeedsTo) {
  machine.postMessage("app-needs-restart");
  machine.runFor(1);

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received 'app-needs-restart'"),
                          Line("INFO", "Notify[LISTEN] Restarting Karno.app."),
                          Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)"),
                          Line("INFO", "ProcessUtils: Waiting for 'it.vantul.Karno' to terminate"),
                          Line("WARN", "ProcessUtils: 'it.vantul.Karno terminated (0.2 seconds)"),
                          Line("INFO", "Startup[LAUNCH] Launching Karno.app"),
                          Line("INFO", "Startup[LAUNCH] Launched Karno.app (pid: 5001)")));
}

TEST_F(Listener, SaysThatItRestartsTheApplicationBeforeItDoes) {
  bool flagThen = true;
  machine.whenLogged(Line("INFO", "Notify[LISTEN] Restarting Karno.app."),
                     [&] { flagThen = StartupManager::instance().restartingEmbeddedKarnoApp(); });

  machine.postMessage("app-needs-restart");
  machine.runUntilIdle();

  EXPECT_FALSE(flagThen);
  EXPECT_TRUE(StartupManager::instance().restartingEmbeddedKarnoApp());
}

class UpdateInProgress : public Listener, public ::testing::WithParamInterface<bool> {
 protected:
  // Either of the two signs of an update.
  UpdateInProgress() {
    machine.updater.inSession = GetParam();
    machine.updater.canCheck = GetParam();  // false is the other sign
  }
};

TEST_P(UpdateInProgress, KeepsTheApplicationFromBeingRestarted) {
  machine.postMessage("app-needs-restart");
  machine.runFor(10);

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Notify[LISTEN] Received 'app-needs-restart'"),
                          Line("INFO", "Notify[LISTEN] Upgrade in progress - Not restarting Karno.app.")));
  EXPECT_FALSE(StartupManager::instance().restartingEmbeddedKarnoApp());
}

TEST_P(UpdateInProgress, DoesNotKeepTheLauncherFromBeingRestarted) {
  machine.postMessage("restart-wrapper");
  machine.runFor(10);

  EXPECT_EQ(machine.tasks.launches().at(0).executablePath, "/usr/bin/open");
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_P(UpdateInProgress, DoesNotKeepAutomaticChecksFromBeingSwitched) {
  machine.postMessage("enable-automatic-updates");
  machine.postMessage("disable-automatic-updates");
  machine.runUntilIdle();

  EXPECT_THAT(machine.updater.automaticChecks, ElementsAre(true, false));
}

TEST_P(UpdateInProgress, DoesNotKeepTheLauncherFromChangingTheBuild) {
  machine.postMessage("restart-wrapper-with-fuse");
  machine.runFor(10);
  machine.postMessage("restart-wrapper-with-file-provider");
  machine.runFor(10);

  EXPECT_EQ(machine.tasks.launches().at(0).arguments.back(), "Karno(Fuse).app");
  EXPECT_EQ(machine.tasks.launches().at(1).arguments.back(), "Karno.app");
}

INSTANTIATE_TEST_SUITE_P(BothSigns, UpdateInProgress, ::testing::Bool());

struct Relaunch {
  std::string message;
  bool runsFuse;
  std::string target;
};

void PrintTo(const Relaunch& relaunch, std::ostream* out) {
  *out << relaunch.message << " from the " << (relaunch.runsFuse ? "FUSE" : "File Provider") << " build";
}

class ListenerOnRelaunch : public ::testing::TestWithParam<Relaunch> {};

TEST_P(ListenerOnRelaunch, OpensTheLauncherAnewWithTheBuild) {
  FakePlatform machine;
  machine.withEmbeddedBuilds().withAdmin("USE_FILE_PROVIDER", GetParam().runsFuse ? "false" : "true");
  KarnoWrappperNotifierListener::manager().start();

  machine.postMessage(GetParam().message);
  machine.runFor(10);

  EXPECT_THAT(machine.tasks.launches().at(0).arguments,
              ElementsAre("-n", "/Applications/Karno.app", "--args", "-launch", GetParam().target));
  EXPECT_EQ(machine.consoleMessages().at(0),
            Line("INFO", "Notify[LISTEN] Received '" + GetParam().message + "'"));
  EXPECT_EQ(machine.log().back(), Line("INFO", "AppDelegate[TERMINATE] Reason: Restart Wrapper"));
}

INSTANTIATE_TEST_SUITE_P(Messages, ListenerOnRelaunch,
                         ::testing::Values(Relaunch{"restart-wrapper-with-fuse", false, "Karno(Fuse).app"},
                                           Relaunch{"restart-wrapper-with-fuse", true, "Karno(Fuse).app"},
                                           Relaunch{"restart-wrapper-with-file-provider", true, "Karno.app"},
                                           Relaunch{"restart-wrapper-with-file-provider", false, "Karno.app"},
                                           Relaunch{"restart-wrapper", true, "Karno(Fuse).app"},
                                           Relaunch{"restart-wrapper", false, "Karno.app"}));

}  // namespace
}  // namespace karno
