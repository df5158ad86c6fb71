#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <unistd.h>

#include <cstdlib>

#include "elements_are.h"
#include "fake_platform.h"
#include "fresh_process.h"
#include "printing.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::TaskEnd;
using platform::Value;
using ::testing::IsEmpty;
using ::testing::Pair;

class CountingDelegate final : public platform::ApplicationDelegate {
 public:
  void applicationDidFinishLaunching() override {}
  void applicationWillTerminate() override { ++ends; }

  int ends = 0;
};

TEST(FakeHost, IsTheMachine) {
  FakePlatform machine;

  EXPECT_EQ(&platform::host().files, &machine.files);
  EXPECT_EQ(&platform::host().dispatch, &machine.dispatch);
}

// Ten milliseconds from each of these starts have no exact end in seconds.
TEST(FakeGroup, EndsItsWaitWheneverItBegins) {
  constexpr int kStarts = 4001;
  FakePlatform machine;
  int ended = 0;

  machine.onThread([&] {
    for (int start = 0; start < kStarts; ++start) {
      const auto group = platform::host().dispatch.makeGroup();
      group->enter();
      if (!group->wait(10'000'000)) ++ended;
      platform::host().dispatch.sleep(0.0011);
    }
  });
  machine.runFor(60);

  EXPECT_EQ(ended, kStarts);
}

TEST(FakeUserDefaults, TellWritesOfTheLauncherFromThoseOfOthers) {
  FakePlatform machine;
  const auto suite = machine.userDefaults.makeSuite("suite");
  machine.userDefaults.suite("suite").values.insert_or_assign("theirs", Value(true));

  suite->setBool(false, "ours");

  EXPECT_TRUE(suite->boolForKey("theirs"));
  EXPECT_THAT(machine.userDefaults.suite("suite").writes, ElementsAre(Pair("ours", Value(false))));
}

TEST(FakeTasks, EndOnAThreadOfTheirOwnWhenTheTestSaysSo) {
  FakePlatform machine;
  std::string ending;
  const auto child =
      machine.tasks.launch({.executablePath = "/bin/a", .arguments = {"x"}}, [&](const TaskEnd& end) {
        ending = std::to_string(end.terminationStatus) + " on " + machine.scheduler.currentThreadName();
      });

  machine.runFor(10);
  const std::string before = ending;
  machine.tasks.end(child.value(), 7);
  machine.runUntilIdle();

  EXPECT_EQ(child.value(), 5001);
  EXPECT_EQ(before, "");
  EXPECT_EQ(ending, "7 on task termination");
  EXPECT_THAT(machine.tasks.running(), IsEmpty());
}

TEST(FakeTasks, FailOnce) {
  FakePlatform machine;
  machine.tasks.failNextLaunch(platform::Error("domain", 1));

  const auto first = machine.tasks.launch({.executablePath = "/bin/a", .arguments = {}}, nullptr);
  const auto second = machine.tasks.launch({.executablePath = "/bin/a", .arguments = {}}, nullptr);

  EXPECT_EQ(first.error(), platform::Error("domain", 1));
  EXPECT_EQ(second.value(), 5001);
}

TEST(FakeTasks, FailTheTestWhenNoSuchChildRuns) {
  static FakePlatform machine;

  EXPECT_NONFATAL_FAILURE(machine.tasks.end(5001), "no child with the process identifier 5001 is running");
}

TEST(FakePromptWindow, TellsEveryObserverAndMayLoseThemMeanwhile) {
  FakePlatform machine;
  FakePromptWindow& window = machine.windows.prompt;
  int closings = 0;
  window.addWillCloseObserver([&] { ++closings; });
  window.addWillCloseObserver([&] { window.removeWillCloseObservers(); });
  window.addWillCloseObserver([&] { ++closings; });

  window.close();

  EXPECT_EQ(closings, 1);
  EXPECT_EQ(window.observerCount(), 0U);
  EXPECT_EQ(window.closes(), 1);
}

TEST(FakeAlerts, FollowTheirScriptAndThenPressTheFirstButton) {
  FakePlatform machine;
  bool wasUp = false;
  machine.alerts.answerNext(1001, [&] { wasUp = true; });

  const long scripted = machine.alerts.runModal({});
  const long unscripted = machine.alerts.runModal({});

  EXPECT_EQ(scripted, 1001);
  EXPECT_TRUE(wasUp);
  EXPECT_EQ(unscripted, 1000);
  EXPECT_EQ(machine.alerts.shown().size(), 2U);
}

TEST(FakeApplication, TellsItsDelegateOfTheEnd) {
  FakePlatform machine;
  CountingDelegate delegate;
  machine.application.setDelegate(&delegate);

  machine.runFor(2);
  machine.application.terminate();

  EXPECT_EQ(delegate.ends, 1);
  EXPECT_EQ(machine.application.terminatedAtSeconds(), 2);
}

TEST(FakeSystemVersion, ComparesAllThreeNumbers) {
  FakePlatform machine;
  machine.systemVersion.running = {12, 3, 1};

  EXPECT_TRUE(machine.systemVersion.isAtLeast(12, 3, 1));
  EXPECT_TRUE(machine.systemVersion.isAtLeast(11, 9, 9));
  EXPECT_FALSE(machine.systemVersion.isAtLeast(12, 3, 2));
  EXPECT_FALSE(machine.systemVersion.isAtLeast(13, 0, 0));
}

TEST(FakeBundles, AnswerForWhatATestAdded) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();

  const auto helper =
      machine.bundles.bundleAtPath("/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app");

  ASSERT_NE(helper, nullptr);
  EXPECT_EQ(helper->executablePath(),
            "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)");
  EXPECT_EQ(helper->bundleIdentifier(), "it.vantul.KarnoFuse");
  EXPECT_EQ(machine.bundles.bundleAtPath("/Applications/Other.app"), nullptr);
}

TEST(LogLine, IsTakenApart) {
  EXPECT_EQ(Line::parse("2024-03-05 14:07:09:042+0100 (4242) [*** ERROR ***] a [b] c"),
            Line("*** ERROR ***", "a [b] c"));
  EXPECT_EQ(Line::parse("2024-03-05 14:07:09:042-0530 (1) [INFO] two\nlines"), Line("INFO", "two\nlines"));
  EXPECT_EQ(Line::parse("something else"), Line("", "something else"));
}

TEST(FreshProcess, GivesBackWhatTheScenarioMade) {
  int here = 1;

  const std::string outcome = inFreshProcess([&] {
    here = 2;
    return std::string("made there");
  });

  EXPECT_EQ(outcome, "made there");
  EXPECT_EQ(here, 1);
}

TEST(FreshProcess, TellsOfFailuresExceptionsAndCrashes) {
  EXPECT_EQ(inFreshProcess([]() -> std::string { throw std::runtime_error("broken"); }), "threw: broken");
  EXPECT_EQ(inFreshProcess([]() -> std::string {
              ADD_FAILURE();
              return "done";
            }),
            "done (an expectation failed)");
  EXPECT_EQ(inFreshProcess([]() -> std::string { _exit(3); }), " (crashed with status 768)");
}

TEST(FreshProcess, NamesTheSeedsOfOtherOutcomes) {
  const std::uint64_t first = FakePlatform::defaultSeed();

  const auto others = outcomesOtherThan(
      "usual", 3, [&](std::uint64_t seed) -> std::string { return seed == first + 1 ? "strange" : "usual"; });

  EXPECT_THAT(others, ElementsAre("seed " + std::to_string(first + 1) + ": strange"));
}

TEST(FakeSeed, ComesFromTheEnvironment) {
  setenv("KARNO_TEST_SEED", "77", 1);

  EXPECT_EQ(FakePlatform().seed, 77U);
  EXPECT_EQ(FakePlatform(5).seed, 5U);
}

}  // namespace
}  // namespace karno::test
