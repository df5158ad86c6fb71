#include "platform/macos/updater/sparkle_updater.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include "../../cocoa/foundation_objects.h"
#include "../../support/hand_dispatch.h"
#include "../../support/standard_error_capture.h"
#include "../recording_updater_delegate.h"
#include "../sparkle_stand_ins.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::HandDispatch;
using karno::test::StandardErrorCapture;
using ::testing::IsEmpty;

constexpr std::int64_t kMoment = 20'000'000;          // nanoseconds
constexpr std::int64_t kLongEnough = 60'000'000'000;  // nanoseconds

const char* const kFramework = "/Applications/Karno.app/Contents/Frameworks/Sparkle.framework";

class MacUpdater : public testing::Test {
 protected:
  // The main thread has no time for questions.
  void makeImpatient() {
    updater_ = SparkleUpdaters(dispatch_, {.question = kMoment}).makeUpdater(delegate_);
  }

  // What another thread hears while nobody serves the main queue.
  template <class Ask>
  static auto askedElsewhere(Ask ask) {
    return std::async(std::launch::async, ask).get();
  }

  const objc::AutoreleasePool pool_;
  SparkleStandIns framework_;
  RecordingUpdaterDelegate delegate_;
  HandDispatch dispatch_;
  std::unique_ptr<Updater> updater_ =
      SparkleUpdaters(dispatch_, {.question = kLongEnough}).makeUpdater(delegate_);
};

TEST_F(MacUpdater, TouchesNothingUntilItIsWanted) {
  EXPECT_THAT(framework_.standIns().messages(), IsEmpty());
}

TEST_F(MacUpdater, LoadsTheFrameworkAndStartsTheUpdaterOfTheMainBundle) {
  const auto error = updater_->startUpdater();

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(
      framework_.standIns().messages(),
      ElementsAre(std::string("bundleWithPath: ") + kFramework,
                  "loadAndReturnError:", "initWithHostBundle:delegate: main",
                  "initWithHostBundle:applicationBundle:userDriver:delegate: main main", "startUpdater:"));
}

TEST_F(MacUpdater, GivesTheUpdaterAndItsWindowsTheSameDelegate) {
  updater_->startUpdater();

  ASSERT_NE(framework_.delegate, nullptr);
  EXPECT_EQ(framework_.delegateOfWindows, framework_.delegate);
}

TEST_F(MacUpdater, ASecondStartOfOneThatRunsIsASuccessAtOnce) {
  updater_->startUpdater();
  const auto before = framework_.standIns().messages();

  const auto error = updater_->startUpdater();

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(framework_.standIns().messages(), before);
}

TEST_F(MacUpdater, AStartThatFailsTellsWhyAndIsTriedAgain) {
  framework_.starts = false;
  framework_.startError =
      objc::Object::retaining(explainedError("SUSparkleErrorDomain", 1, "There is no public key."));
  const auto first = updater_->startUpdater();
  framework_.starts = true;

  const auto second = updater_->startUpdater();

  EXPECT_EQ(first, Error("SUSparkleErrorDomain", 1, {{"NSLocalizedDescription", "There is no public key."}}));
  EXPECT_EQ(second, std::nullopt);
}

TEST_F(MacUpdater, AStartThatFailsWithoutAReasonIsAnErrorAllTheSame) {
  framework_.starts = false;

  const auto error = updater_->startUpdater();

  EXPECT_EQ(error, Error("SUSparkleErrorDomain", 0, {{"NSLocalizedDescription", "unknown error"}}));
}

TEST_F(MacUpdater, WhatTheFrameworkRaisesAtTheStartIsAnError) {
  updater_->sessionInProgress();
  framework_.standIns().raise();

  const auto error = updater_->startUpdater();

  ASSERT_NE(error, std::nullopt);
  EXPECT_EQ(error->localizedDescription(), "starting the updater: raised by a stand-in");
}

TEST_F(MacUpdater, WhatTheFrameworkRaisesWhenItIsLoadedIsAnError) {
  framework_.standIns().raise();

  const auto error = updater_->startUpdater();

  ASSERT_NE(error, std::nullopt);
  EXPECT_EQ(error->localizedDescription(), "making the updater: raised by a stand-in");
}

TEST_F(MacUpdater, AsksTheFrameworkEveryTime) {
  framework_.sessionInProgress = true;
  framework_.canCheckForUpdates = false;
  EXPECT_TRUE(updater_->sessionInProgress());
  EXPECT_FALSE(updater_->canCheckForUpdates());

  framework_.sessionInProgress = false;
  framework_.canCheckForUpdates = true;
  EXPECT_FALSE(updater_->sessionInProgress());
  EXPECT_TRUE(updater_->canCheckForUpdates());
}

TEST_F(MacUpdater, PassesRequestsOn) {
  updater_->startUpdater();
  const auto before = static_cast<std::ptrdiff_t>(framework_.standIns().messages().size());

  updater_->checkForUpdates();
  updater_->setAutomaticallyChecksForUpdates(true);
  updater_->setAutomaticallyChecksForUpdates(false);
  updater_->clearFeedURLFromUserDefaults();

  const auto& messages = framework_.standIns().messages();
  EXPECT_THAT(std::vector<std::string>(messages.begin() + before, messages.end()),
              ElementsAre("checkForUpdates", "setAutomaticallyChecksForUpdates: YES",
                          "setAutomaticallyChecksForUpdates: NO", "clearFeedURLFromUserDefaults"));
}

TEST_F(MacUpdater, LeavesTheFeedAloneWhereTheFrameworkCannotClearIt) {
  framework_.becomeOld();
  const StandardErrorCapture console;
  updater_->startUpdater();
  const auto before = framework_.standIns().messages();

  updater_->clearFeedURLFromUserDefaults();

  EXPECT_EQ(framework_.standIns().messages(), before);
  EXPECT_EQ(console.text(), "");
}

TEST_F(MacUpdater, WhatTheFrameworkRaisesElsewhereEndsOnTheConsole) {
  updater_->startUpdater();
  const StandardErrorCapture console;
  framework_.standIns().raise();

  updater_->checkForUpdates();
  updater_->setAutomaticallyChecksForUpdates(true);
  updater_->clearFeedURLFromUserDefaults();

  EXPECT_EQ(console.text(),
            "checking for updates: raised by a stand-in\n"
            "setting automatic checks: raised by a stand-in\n"
            "clearing the updater's feed: raised by a stand-in\n");
}

TEST_F(MacUpdater, KeepsTheFrameworksObjectsAsLongAsItLives) {
  const int before = framework_.standIns().liveCount();
  updater_->startUpdater();
  EXPECT_EQ(framework_.standIns().liveCount(), before + 2);

  updater_.reset();

  EXPECT_EQ(framework_.standIns().liveCount(), before);
}

TEST_F(MacUpdater, SeveralLiveSideBySideWithDelegatesOfTheirOwn) {
  updater_->startUpdater();
  const objc::Id firstObject = framework_.delegate;
  RecordingUpdaterDelegate second;
  const auto other = SparkleUpdaters(dispatch_).makeUpdater(second);
  other->startUpdater();

  tellDelegate(firstObject, "userDidCancelDownload:", objc::Id());
  tellDelegate(framework_.delegate, "updater:didFinishLoadingAppcast:", objc::Id(), objc::Id());

  EXPECT_THAT(delegate_.told, ElementsAre("cancelled"));
  EXPECT_THAT(second.told, ElementsAre("loaded"));
}

TEST_F(MacUpdater, WithoutTheFrameworkNeverStartsAndDoesNothing) {
  framework_.becomeMissing();

  const auto error = updater_->startUpdater();
  updater_->checkForUpdates();
  updater_->setAutomaticallyChecksForUpdates(true);
  updater_->clearFeedURLFromUserDefaults();

  EXPECT_EQ(error,
            Error("SUSparkleErrorDomain", 5,
                  {{"NSLocalizedDescription", std::string("There is no framework at ") + kFramework}}));
  EXPECT_FALSE(updater_->sessionInProgress());
  EXPECT_FALSE(updater_->canCheckForUpdates());
  EXPECT_THAT(framework_.standIns().messages(), ElementsAre(std::string("bundleWithPath: ") + kFramework));
}

TEST_F(MacUpdater, TellsWhyTheFrameworkCannotBeLoaded) {
  framework_.loads = false;
  framework_.loadError =
      objc::Object::retaining(explainedError("NSCocoaErrorDomain", 3588, "The bundle is damaged."));

  const auto error = updater_->startUpdater();

  EXPECT_EQ(error, Error("NSCocoaErrorDomain", 3588, {{"NSLocalizedDescription", "The bundle is damaged."}}));
}

TEST_F(MacUpdater, TellsOfAFrameworkThatCannotBeLoadedForNoReason) {
  framework_.loads = false;

  const auto error = updater_->startUpdater();

  EXPECT_EQ(
      error,
      Error("SUSparkleErrorDomain", 5,
            {{"NSLocalizedDescription", std::string("The framework cannot be loaded: ") + kFramework}}));
}

TEST_F(MacUpdater, TellsOfAFrameworkThatIsAnother) {
  framework_.becomeEmpty();

  const auto error = updater_->startUpdater();

  EXPECT_EQ(error, Error("SUSparkleErrorDomain", 5,
                         {{"NSLocalizedDescription", "The framework in the bundle has no SPUUpdater"}}));
}

// Only the answers count: a method may leave anything in the error when it succeeds.
TEST_F(MacUpdater, StartsWhateverIsLeftInTheErrors) {
  framework_.loadError = objc::Object::retaining(explainedError("NSCocoaErrorDomain", 3588, "damaged"));
  framework_.startError = framework_.loadError;

  EXPECT_EQ(updater_->startUpdater(), std::nullopt);
}

TEST_F(MacUpdater, TellsOfAFrameworkThatMakesNoWindows) {
  framework_.makesWindows = false;

  const auto error = updater_->startUpdater();

  EXPECT_EQ(error, Error("SUSparkleErrorDomain", 5,
                         {{"NSLocalizedDescription", "The framework made no windows for this bundle"}}));
  EXPECT_EQ(framework_.standIns().messages().back(), "initWithHostBundle:delegate: main");
}

TEST_F(MacUpdater, TellsOfAFrameworkThatMakesNoUpdater) {
  const int before = framework_.standIns().liveCount();
  framework_.makesUpdaters = false;

  const auto error = updater_->startUpdater();

  EXPECT_EQ(error, Error("SUSparkleErrorDomain", 5,
                         {{"NSLocalizedDescription", "The framework made no updater for this bundle"}}));
  EXPECT_FALSE(updater_->sessionInProgress());
  EXPECT_EQ(framework_.standIns().liveCount(), before);
}

TEST_F(MacUpdater, HasNoFrameworkWithoutAMainBundle) {
  framework_.standIns().answer("mainBundle", objc::Object());
  framework_.standIns().answer("bundleWithPath:", objc::Object());

  const auto error = updater_->startUpdater();

  EXPECT_EQ(
      error,
      Error("SUSparkleErrorDomain", 5,
            {{"NSLocalizedDescription", "There is no framework at /Contents/Frameworks/Sparkle.framework"}}));
}

TEST_F(MacUpdater, WhatTheFrameworkRaisesWhenItIsAskedCountsAsAnUpdateInProgress) {
  framework_.canCheckForUpdates = true;
  updater_->startUpdater();
  const StandardErrorCapture console;
  framework_.standIns().raise();

  EXPECT_TRUE(updater_->sessionInProgress());
  EXPECT_FALSE(updater_->canCheckForUpdates());
  EXPECT_EQ(console.text(),
            "asking the updater for a session: raised by a stand-in\n"
            "asking the updater whether it can check: raised by a stand-in\n");
}

TEST_F(MacUpdater, AnswersEveryThreadAtOnceWithWhatTheFrameworkSaysNow) {
  updater_->startUpdater();
  framework_.sessionInProgress = true;
  framework_.canCheckForUpdates = false;
  EXPECT_TRUE(askedElsewhere([this] { return updater_->sessionInProgress(); }));
  EXPECT_FALSE(askedElsewhere([this] { return updater_->canCheckForUpdates(); }));

  framework_.sessionInProgress = false;
  framework_.canCheckForUpdates = true;
  EXPECT_FALSE(askedElsewhere([this] { return updater_->sessionInProgress(); }));
  EXPECT_TRUE(askedElsewhere([this] { return updater_->canCheckForUpdates(); }));
}

TEST_F(MacUpdater, AnotherThreadThatAsksFirstHasTheMainThreadMakeIt) {
  framework_.sessionInProgress = true;
  std::atomic<bool> isAnswered = false;
  std::future<bool> answer = std::async(std::launch::async, [&] {
    const bool heard = updater_->sessionInProgress();
    isAnswered = true;
    dispatch_.byHand().async([] {});  // wakes the test's thread
    return heard;
  });

  dispatch_.byHand().runUntil([&isAnswered] { return isAnswered.load(); });

  EXPECT_TRUE(answer.get());
}

TEST_F(MacUpdater, IsSetFromAnotherThread) {
  updater_->startUpdater();
  std::thread setter([this] { updater_->setAutomaticallyChecksForUpdates(true); });

  dispatch_.byHand().runUntil([this] { return framework_.standIns().messages().back() != "startUpdater:"; });
  setter.join();

  EXPECT_EQ(framework_.standIns().messages().back(), "setAutomaticallyChecksForUpdates: YES");
}

TEST_F(MacUpdater, WhatCannotBeMadeInTimeHasNoSessionAndCannotCheck) {
  makeImpatient();
  framework_.sessionInProgress = true;
  framework_.canCheckForUpdates = true;

  EXPECT_FALSE(askedElsewhere([this] { return updater_->sessionInProgress(); }));
  EXPECT_FALSE(askedElsewhere([this] { return updater_->canCheckForUpdates(); }));
}

TEST_F(MacUpdater, WhatABusyMainThreadWasToSetIsSetWhenItIsFree) {
  makeImpatient();
  updater_->startUpdater();
  std::thread([this] { updater_->setAutomaticallyChecksForUpdates(false); }).join();
  EXPECT_EQ(framework_.standIns().messages().back(), "startUpdater:");

  dispatch_.byHand().runFor(std::chrono::milliseconds(1));

  EXPECT_EQ(framework_.standIns().messages().back(), "setAutomaticallyChecksForUpdates: NO");
}

TEST_F(MacUpdater, AWishThatOutlivesItReachesNobody) {
  makeImpatient();
  updater_->startUpdater();
  std::thread([this] { updater_->setAutomaticallyChecksForUpdates(true); }).join();
  updater_.reset();
  const auto before = framework_.standIns().messages();

  dispatch_.byHand().runFor(std::chrono::milliseconds(1));

  EXPECT_EQ(framework_.standIns().messages(), before);
}

// The main thread waits just then for the client's end, and the thread that learns of that end asks.
TEST_F(MacUpdater, IsAskedWhileTheMainThreadIsBusyWithARelaunch) {
  updater_->startUpdater();
  framework_.sessionInProgress = true;
  std::atomic<bool> inSession = false;
  delegate_.onEveryCall = [&] { std::thread([&] { inSession = updater_->sessionInProgress(); }).join(); };

  tellDelegate<objc::Boolean>(framework_.delegate, "updaterShouldRelaunchApplication:", objc::Id());

  EXPECT_TRUE(inSession);
}

}  // namespace
}  // namespace karno::platform::trial
