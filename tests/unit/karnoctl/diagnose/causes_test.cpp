#include "karnoctl/diagnose/causes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "fake_platform.h"
#include "logged_texts.h"
#include "written_log.h"

namespace karno::karnoctl {
namespace {

using test::diagnosisOf;
using test::namesOf;
using test::WrittenLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

// What is logged after the first lines of a start.
struct Case {
  std::string_view cause;
  std::vector<std::string> messages;
};

void PrintTo(const Case& one, std::ostream* out) { *out << one.cause; }

constexpr const char* kLaunched = "Startup[LAUNCH] Launched Karno.app (pid: 4250)";
constexpr const char* kLaunching = "Startup[LAUNCH] Launching Karno.app";
constexpr const char* kFollows = "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated";

std::string childEnded(int status, int reason) {
  return "Startup[TERMINATED] Child terminated (status:" + std::to_string(status) +
         ", reason:" + std::to_string(reason) + ")";
}

const std::vector<Case>& casesBySigns() {
  static const std::vector<Case> cases{
      {"client-missing",
       {"Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app",
        "Main: Failed to start Karno"}},
      {"client-does-not-start",
       {kLaunching, "Startup[LAUNCH] Failed to launch '/Applications/Karno.app/x'. Reason: no",
        "Startup[LAUNCH] Failed to launch Karno. Reason: no", "Main: Failed to start Karno"}},
      {"client-crashed", {"Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=(null))"}},
      {"launcher-not-opened-anew",
       {"Startup[RESTART] Karno has quit - restarting wrapper (-launch Karno.app)",
        "Startup[RESTART] Failed to restart wrapper. Reason: no", "AppDelegate[TERMINATE] Reason: x"}},
      {"client-stays", {"Startup[RESTART] Failed to restart Karno - because it has not exited"}},
      {"client-stays", {"Startup[RESTART] Failed to restart Wrapper - because Karno has not exited"}},
      {"system-not-known", {"KarnoOSInfoManager: no \"uname\""}},
      {"system-not-known", {"Fuse[SYSTEM] Failed to identify the system cpu"}},
      {"system-not-known", {"Fuse[SYSTEM] Failed to identify the system version"}},
      {"macfuse-refused",
       {"Fuse[SYSTEM] Fuse is not installed", "Main: Need to install Fuse",
        "Main: User pressed cancel - not installing Fuse"}},
      {"macfuse-refused",
       {"FuseRequirements: System requirements not met", "Startup[FUSE] User decided not to install fuse"}},
      {"macfuse-too-old",
       {"Fuse[SYSTEM] Fuse Version: '4.0.4'", "FuseRequirements: System requirements not met"}},
      {"macfuse-missing", {"Fuse[SYSTEM] Fuse is not installed", "Main: Need to install Fuse"}},
      {"move-failed", {"AppDelegate[MOVE] Failed to move Karno. Error=no room"}},
      {"move-refused", {"AppDelegate[MOVE] User cancelled the move operation - quitting"}},
      {"client-stays-for-update",
       {"ProcessUtils[TERMINATE] Timed-out waiting for process 4250 to terminate."}},
      {"client-stays-for-update",
       {"ProcessUtils[TERMINATE] Failed to terminate process 4250. Reason: no (errno: 1)"}},
      {"update-not-noted", {"Sparkle[INSTALL] Failed to create 'updated' touchfile (/x/.karnoUpdated)"}},
      {"note-of-update-stays", {"Sparkle[START] Failed to remove '/x/.karnoUpdated'. Reason:no"}},
      {"updater-does-not-start", {"Sparkle[INIT] Failed to start. Reason: no key"}},
      {"download-failed",
       {"Sparkle[UPDATE] Failed to download update. Error: no", "Sparkle[ABORT] Update Aborted (no)"}},
      {"update-failed", {"Sparkle[ABORT] Update Aborted (no feed)"}},
      {"feed-marker", {"Sparkle[FEED] Cannot parse url in /Users/tester/KARNOUPGRADE.debug"}},
      {"client-gone-for-no-update",
       {kLaunching, kLaunched, childEnded(0, 1),
        "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated"}},
      {"file-provider-on-old-system",
       {"Startup[CHECK] *** Cannot *** use FileProvider (O/S version < 12.3). Failing over to Fuse."}},
      {"newest-macfuse-not-known", {"Fuse[UPDATE] Failed to retrieve metadata. Reason: no network"}},
      {"newest-macfuse-not-known", {"Fuse[UPDATE] Failed to parse metadata. Reason: no JSON"}},
      {"newest-macfuse-not-known", {"Fuse[UPDATE] Failed to check for an update"}},
      {"no-preference-pane", {"Fuse[UPDATE] Failed to open Fuse preference pane. Reason: no"}},
      {"texts-missing", {"KarnoLocalise: Failed to build path for 'Strings'"}},
      {"unknown-message", {"Notify[LISTEN] Received an unknown notification 'hello'"}},
  };
  return cases;
}

const std::vector<Case>& casesBySession() {
  static const std::vector<Case> cases{
      {"client-killed", {kLaunching, kLaunched, childEnded(9, 2), kFollows}},
      {"client-failed", {kLaunching, kLaunched, childEnded(3, 1), kFollows}},
      {"client-left", {kLaunching, kLaunched, childEnded(0, 1), kFollows}},
      {"waits-for-an-answer", {"KarnoMoveApplicationManager:: Alerting user that the app needs moving."}},
      {"lines-missing", {"Startup[LAUNCH] Launched Karno.app (pid: 4250)"}},
  };
  return cases;
}

WrittenLog logOf(const Case& one) {
  WrittenLog log;
  log.beginsToRun();
  for (const std::string& message : one.messages) log.says(message);
  return log;
}

class CauseOf : public testing::TestWithParam<Case> {
  test::FakePlatform machine_;
};

TEST_P(CauseOf, IsFoundFirst) {
  const std::vector<std::string> names = namesOf(diagnosisOf(logOf(GetParam())));

  ASSERT_THAT(names, Not(IsEmpty()));
  EXPECT_EQ(names.front(), GetParam().cause);
}

INSTANTIATE_TEST_SUITE_P(Signs, CauseOf, testing::ValuesIn(casesBySigns()));
INSTANTIATE_TEST_SUITE_P(Sessions, CauseOf, testing::ValuesIn(casesBySession()));

class CureOf : public testing::Test {
 protected:
  std::vector<std::string> foundAfter(const std::vector<std::string>& messages) {
    return namesOf(diagnosisOf(logOf({.cause = {}, .messages = messages})));
  }

  test::FakePlatform machine_;
};

// Every cure of the table, by what it follows.
TEST_F(CureOf, EveryCauseThatHasOneTakesItAway) {
  std::vector<std::string> stubborn;
  for (const Cause& cause : causes()) {
    for (const std::string_view cure : cause.cures) {
      if (cure.empty()) continue;
      const auto names = foundAfter({std::string(cause.signs.front()), std::string(cure)});
      if (std::ranges::count(names, cause.name) > 0) stubborn.push_back(std::string(cause.name));
    }
  }

  EXPECT_THAT(stubborn, IsEmpty());
}

TEST_F(CureOf, AnUpdateThatFailedIsALaterOneThatCameToItsEnd) {
  const auto names =
      foundAfter({"Sparkle[ABORT] Update Aborted (no feed)", "Sparkle[CHECK] Checking for updates (x)",
                  "Sparkle[UPDATE] No update found. Reason: none", "Sparkle[ABORT] Update Aborted (none)"});

  EXPECT_THAT(names, IsEmpty());
}

TEST_F(CureOf, AMissingMacFUSEIsNoneThatIsTooOld) {
  EXPECT_THAT(
      foundAfter({"Fuse[SYSTEM] Fuse is not installed", "FuseRequirements: System requirements not met"}),
      ElementsAre("macfuse-too-old"));
}

// What a session ends with when all goes well is no failure, but the next failure is one.
TEST_F(CureOf, AGoodEndIsForOneSessionOfTheUpdater) {
  const auto names =
      foundAfter({"Sparkle[UPDATE] No update found. Reason: none", "Sparkle[ABORT] Update Aborted (none)",
                  "Sparkle[ABORT] Update Aborted (no feed)"});

  EXPECT_THAT(names, ElementsAre("update-failed"));
}

TEST(Causes, AreAllFoundBySomeTest) {
  std::set<std::string_view> tested{"client-ends-at-once", "launcher-killed", "clock-set-back"};  // sessions
  for (const Case& one : casesBySigns()) tested.insert(one.cause);
  for (const Case& one : casesBySession()) tested.insert(one.cause);
  std::set<std::string_view> names;
  for (const Cause& cause : causes()) names.insert(cause.name);

  EXPECT_EQ(names, tested);
  EXPECT_EQ(names.size(), causes().size());
}

// What is looked for stands in the launcher's own sources.
TEST(Causes, AreMadeOfLinesThatTheLauncherLogs) {
  const std::vector<test::LoggedText> texts = test::loggedTexts();
  std::vector<std::string_view> unknown = linesOfSessions();
  for (const Cause& cause : causes()) {
    unknown.insert(unknown.end(), cause.signs.begin(), cause.signs.end());
    unknown.insert(unknown.end(), cause.cures.begin(), cause.cures.end());
  }

  std::erase_if(unknown, [&](std::string_view line) { return test::isBegunBySome(line, texts); });

  EXPECT_THAT(unknown, IsEmpty());
}

TEST(Causes, SayWhatIsWrongAndWhatToDo) {
  std::vector<std::string_view> speechless;
  for (const Cause& cause : causes())
    if (!cause.says.ends_with('.') || !cause.advice.ends_with('.')) speechless.push_back(cause.name);

  EXPECT_THAT(speechless, IsEmpty());
}

}  // namespace
}  // namespace karno::karnoctl
