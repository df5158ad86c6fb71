#include "karnoctl/state/launcher_story.h"

#include <gtest/gtest.h>

namespace karno::karnoctl {
namespace {

using enum LauncherState;

constexpr const char* kBeginning = "===================================================";

// The story of these messages, one a second.
LauncherStory storyOf(const std::vector<std::string>& messages) {
  LauncherStory story;
  int second = 10;
  for (const std::string& message : messages) {
    const std::string date = "2026-11-21 09:12:" + std::to_string(second++) + ":000+0000";
    story.take({.date = date, .processIdentifier = 4242, .level = "INFO", .message = message});
  }
  return story;
}

struct Moment {
  std::vector<std::string> messages;
  LauncherState state;
  const char* doing;
};

class LauncherStoryAt : public testing::TestWithParam<Moment> {};

TEST_P(LauncherStoryAt, IsInTheStateOfItsLastTurn) {
  const LauncherStory story = storyOf(GetParam().messages);

  EXPECT_EQ(nameOf(story.state()), nameOf(GetParam().state));
  EXPECT_EQ(story.doing(), GetParam().doing);
}

INSTANTIATE_TEST_SUITE_P(
    Each, LauncherStoryAt,
    testing::Values(
        Moment{{}, Unknown, ""}, Moment{{"Sparkle[START] Starting Up"}, Unknown, ""},
        Moment{{kBeginning}, Starts, "its first moments"},
        Moment{{kBeginning, "Startup[CHECK] Checking system for Fuse..."}, Starts, "checks the system"},
        Moment{{"AppDelegate[MOVE] Check whether app needs to be moved",
                "KarnoMoveApplicationManager:: Alerting user that the app needs moving."},
               Asks,
               "whether it may move itself to the Applications folder"},
        Moment{{"Startup[CHECK] Checking system for Fuse...", "Main: Need to install Fuse"},
               Asks,
               "to install macFUSE, or a newer one"},
        Moment{{"Main: Need to install Fuse", "Main: User pressed continue to install Fuse",
                "Startup[FUSE] Waiting for Fuse to install"},
               WaitsForFuse,
               ""},
        Moment{{"Startup[FUSE] Waiting for Fuse to install", "Startup[FUSE] Fuse is installed"},
               Starts,
               "macFUSE is good enough"},
        Moment{{"Startup[LAUNCH] Launching Karno.app", "Startup[LAUNCH] Launched Karno.app (pid: 4250)"},
               Runs,
               ""},
        Moment{{"Startup[LAUNCH] Launched Karno.app (pid: 4250)", "Notify[LISTEN] Restarting Karno.app."},
               Starts,
               "restarts the client"},
        Moment{{"Startup[LAUNCH] Launched Karno.app (pid: 4250)",
                "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=disk full)"},
               Asks,
               "whether to start the client again after it has failed"},
        Moment{{"Startup[LAUNCH] Launched Karno.app (pid: 4250)", "Sparkle[UPDATE] Found: Karno 2 (2.0)"},
               Asks,
               "whether to install an update"},
        Moment{{"Startup[LAUNCH] Launched Karno.app (pid: 4250)", "Sparkle[UPDATE] Found: Karno 2 (2.0)",
                "Sparkle[UPDATE] User decided to skip update"},
               Runs,
               ""},
        Moment{{"Startup[LAUNCH] Launched Karno.app (pid: 4250)",
                "Sparkle[UPDATE] User decided to install update", "Sparkle[UPDATE] Extracting update"},
               Updates,
               "unpacks the archive"},
        Moment{{"Startup[LAUNCH] Launched Karno.app (pid: 4250)", "Sparkle[UPDATE] Extracting update",
                "Sparkle[ABORT] Update Aborted (no)"},
               Runs,
               ""},
        Moment{{"Fuse[UPDATE] Prompting user - Fuse update is available"}, Asks, "whether to update macFUSE"},
        Moment{{"Main: Failed to start Karno"}, Asks, "to confirm that the client could not be started"},
        Moment{{"Main: Failed to start Karno", "AppDelegate[TERMINATE] Reason: Failed to start Karno.app"},
               Quits,
               "Failed to start Karno.app"},
        Moment{{"AppDelegate:: Terminating"}, Quits, "its last moments"}));

TEST(LauncherStory, QuitsOnceTheUserHasAnswered) {
  const LauncherStory story =
      storyOf({"Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=disk full)",
               "AppDelegate[TERMINATE] Reason: User selected quit"});

  EXPECT_EQ(story.state(), Quits);
  EXPECT_EQ(story.doing(),
            "User selected quit, once the user has answered: it asks whether to start the client again after "
            "it has failed");
}

TEST(LauncherStory, GoesOnQuittingWhateverIsStartedMeanwhile) {
  const LauncherStory story = storyOf({"AppDelegate[TERMINATE] Reason: User selected quit",
                                       "Startup[LAUNCH] Launched Karno.app (pid: 4251)"});

  EXPECT_EQ(story.state(), Quits);
  EXPECT_EQ(story.client, 4251);
}

TEST(LauncherStory, TellsSinceWhen) {
  const LauncherStory waiting =
      storyOf({kBeginning, "Startup[FUSE] Waiting for Fuse to install", "Object=YES"});
  const LauncherStory asking = storyOf({kBeginning, "Sparkle[UPDATE] Found: Karno 2 (2.0)", kBeginning,
                                        "Main: Need to install Fuse", "Startup[CHECK] Using FileProvider"});

  EXPECT_EQ(waiting.since(), "2026-11-21 09:12:11:000+0000");
  EXPECT_EQ(asking.since(), "2026-11-21 09:12:13:000+0000");
  EXPECT_EQ(storyOf({"Object=YES"}).since(), std::nullopt);
}

TEST(LauncherStory, KeepsTheFactsOfTheLastStart) {
  const LauncherStory story =
      storyOf({"Karno Version: 1.0.0", "AppDelegate[TERMINATE] Reason: User selected quit", kBeginning,
               "Karno Version: 2.0.0", "EmbeddedApp[CONFIGURE] Use File Provider = No (already using Fuse)",
               "Startup[LAUNCH] Launched Karno(Fuse).app (pid: 4250)"});

  EXPECT_EQ(story.version, "2.0.0");
  EXPECT_EQ(story.quitReason, std::nullopt);
  EXPECT_EQ(story.buildReason, "already using Fuse");
  EXPECT_EQ(story.build, "Karno(Fuse).app");
  EXPECT_EQ(story.client, 4250);
  EXPECT_EQ(story.beginning, "2026-11-21 09:12:12:000+0000");
}

TEST(LauncherStory, KnowsTheBuildOnceItIsChosen) {
  const LauncherStory story = storyOf({"EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)"});

  EXPECT_EQ(story.build, "Karno.app");
  EXPECT_EQ(story.buildReason, "admin");
}

TEST(LauncherStory, HasNoClientOnceItHasEnded) {
  const LauncherStory story = storyOf({"Startup[LAUNCH] Launched Karno.app (pid: 4250)",
                                       "Startup[TERMINATED] Child terminated (status:0, reason:1)"});

  EXPECT_EQ(story.client, std::nullopt);
  EXPECT_EQ(story.build, "Karno.app");
}

TEST(LauncherStory, TakesLinesThatWereTamperedWith) {
  const LauncherStory story = storyOf(
      {"Startup[LAUNCH] Launched ", "Startup[LAUNCH] Launched  (pid: 99999999999999)",
       "Startup[LAUNCH] Launched (pid: 1)", "EmbeddedApp[CONFIGURE] Use File Provider = )",
       "EmbeddedApp[CONFIGURE] Use File Provider = )(", "EmbeddedApp[CONFIGURE] Use File Provider = ", ""});

  EXPECT_EQ(story.client, std::nullopt);
  EXPECT_EQ(story.state(), Runs);
}

}  // namespace
}  // namespace karno::karnoctl
