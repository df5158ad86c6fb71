#include "move/karno_move_application_manager.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "launcher.h"
#include "moving_machine.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::kInstalled;
using test::Launcher;
using test::Line;
using test::MovingMachine;
using ::testing::IsEmpty;

const Line kAlerting("INFO", "KarnoMoveApplicationManager:: Alerting user that the app needs moving.");
const Line kBailingOut("WARN",
                       "KarnoMoveApplicationManager:: Bailing out as we're already moving the application");

KarnoMoveApplicationManager& moveManager() { return KarnoMoveApplicationManager::instance(); }

// Writes down what it is told, and on which thread.
class Told final : public KarnoMoveApplicationDelegate {
 public:
  explicit Told(MovingMachine& machine) : machine_(machine) {}

  void moveApplicationNotNeeded(KarnoMoveApplicationManager&) override { note("not needed"); }
  void moveApplicationDidComplete(KarnoMoveApplicationManager&) override { note("complete"); }
  void moveApplicationUserDidCancel(KarnoMoveApplicationManager&) override { note("cancelled"); }
  void moveApplicationDidFail(KarnoMoveApplicationManager&, const Error& error) override {
    note("failed (" + std::to_string(error.code()) + " " + error.localizedDescription() + ")");
  }

  std::vector<std::string> calls;

 private:
  void note(const std::string& call) {
    calls.push_back(call + " on " + machine_.scheduler.currentThreadName());
  }

  MovingMachine& machine_;
};

class MoveManager : public ::testing::Test {
 protected:
  MoveManager() { moveManager().setDelegate(told_); }

  // As the application delegate does.
  void askInBackground() {
    machine_.onThread([] { moveManager().moveApplicationIfRequired(); }, "background");
    machine_.runUntilIdle();
  }

  MovingMachine machine_;
  std::shared_ptr<Told> told_ = std::make_shared<Told>(machine_);
};

TEST_F(MoveManager, TellsAtOnceThatNoMoveIsNeeded) {
  machine_.bundles.main().setPath(kInstalled);

  askInBackground();

  EXPECT_THAT(told_->calls, ElementsAre("not needed on background"));
  EXPECT_THAT(machine_.console(), IsEmpty());
}

TEST_F(MoveManager, TellsThatNoMoveIsNeededWhereTheUserDefaultSaysSo) {
  machine_.userDefaults.standard().values.insert_or_assign("moveToApplicationsFolderAlertSuppress", true);

  askInBackground();

  EXPECT_THAT(told_->calls, ElementsAre("not needed on background"));
}

TEST_F(MoveManager, TellsOnTheMainThreadThatTheMoveIsComplete) {
  askInBackground();

  EXPECT_THAT(told_->calls, ElementsAre("complete on main"));
  EXPECT_THAT(machine_.consoleMessages(),
              ElementsAre(kAlerting, Line("", "INFO -- Moving myself to the Applications folder")));
}

TEST_F(MoveManager, TellsThatTheMoveIsCompleteWhenACopyRuns) {
  machine_.withInstalledCopy();
  machine_.processTable.addApplication(kInstalled);

  askInBackground();

  EXPECT_THAT(told_->calls, ElementsAre("complete on main"));
}

TEST_F(MoveManager, TellsThatTheUserDidNotWantIt) {
  machine_.alerts.answerNext(platform::kAlertSecondButtonReturn);

  askInBackground();

  EXPECT_THAT(told_->calls, ElementsAre("cancelled on main"));
}

TEST_F(MoveManager, TellsThatTheUserDidNotAuthoriseIt) {
  machine_.withReadOnlyApplications();
  machine_.authorisations.rightAnswer = platform::RightAnswer::Cancelled;

  askInBackground();

  EXPECT_THAT(told_->calls, ElementsAre("cancelled on main"));
}

TEST_F(MoveManager, TellsThatItFailedAndWhy) {
  machine_.fileManager.copyFailures.emplace(kInstalled, Error::posix(ENOSPC));

  askInBackground();

  EXPECT_THAT(told_->calls, ElementsAre("failed (14 Failed to copy bundle) on main"));
}

TEST_F(MoveManager, TakesTheMoveUpThroughTheMainDispatchQueue) {
  askInBackground();

  EXPECT_THAT(machine_.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

TEST_F(MoveManager, RefusesASecondMoveWhileTheFirstWaits) {
  moveManager().moveApplicationIfRequired();
  const bool waiting = moveManager().moveInProgress();

  moveManager().moveApplicationIfRequired();
  machine_.runUntilIdle();

  EXPECT_TRUE(waiting);
  EXPECT_THAT(told_->calls, ElementsAre("complete on main"));
  EXPECT_EQ(machine_.alerts.shown().size(), 1U);
  EXPECT_THAT(
      machine_.consoleMessages(),
      ElementsAre(kAlerting, kBailingOut, Line("", "INFO -- Moving myself to the Applications folder")));
}

// The flag guards the wait for the main thread and nothing after it.
TEST_F(MoveManager, TakesASecondMoveOnceTheFirstHasBegun) {
  bool whileAsked = true;
  machine_.alerts.answerNext(platform::kAlertSecondButtonReturn, [&] {
    whileAsked = moveManager().moveInProgress();
    moveManager().moveApplicationIfRequired();
  });
  machine_.alerts.answerNext(platform::kAlertSecondButtonReturn);

  askInBackground();

  EXPECT_FALSE(whileAsked);
  EXPECT_THAT(told_->calls, ElementsAre("cancelled on main", "cancelled on main"));
}

TEST_F(MoveManager, NeedsMovingWhileAMoveWaits) {
  machine_.bundles.main().setPath(kInstalled);
  const bool before = moveManager().appNeedsMoving();

  moveManager().setMoveInProgress(true);

  EXPECT_FALSE(before);
  EXPECT_TRUE(moveManager().appNeedsMoving());
}

TEST_F(MoveManager, DoesNotLookAtWhatWasSet) {
  moveManager().setAppNeedsMoving(false);
  const bool outside = moveManager().appNeedsMoving();
  machine_.bundles.main().setPath(kInstalled);
  moveManager().setAppNeedsMoving(true);

  EXPECT_TRUE(outside);
  EXPECT_FALSE(moveManager().appNeedsMoving());
}

TEST_F(MoveManager, MovesThoughItsDelegateIsGone) {
  told_.reset();

  askInBackground();

  EXPECT_EQ(moveManager().delegate(), nullptr);
  EXPECT_EQ(machine_.launcherAt(kInstalled), "new launcher");
}

// The whole of it, from the launch to the end of the process.
TEST(MoveAtLaunch, QuitsOnceTheBundleHasMoved) {
  MovingMachine machine;
  Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runFor(6);

  const std::vector<Line> log = machine.log();
  ASSERT_GE(log.size(), 5U);
  EXPECT_THAT(
      std::vector<Line>(log.begin() + 4, log.end()),
      ElementsAre(Line("INFO", "AppDelegate[MOVE] Check whether app needs to be moved"), kAlerting,
                  Line("INFO", "AppDelegate[MOVE] Karno has been moved and will be restarted. Quitting."),
                  Line("INFO", "AppDelegate[TERMINATE] Reason: Karno was moved to /Applications"),
                  Line("INFO", "AppDelegate:: Terminating")));
  EXPECT_EQ(machine.application.terminations(), 1);
  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
}

}  // namespace
}  // namespace karno
