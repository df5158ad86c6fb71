#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>

#include "../../cocoa/foundation_objects.h"
#include "../../support/hand_dispatch.h"
#include "../../support/standard_error_capture.h"
#include "../recording_updater_delegate.h"
#include "../sparkle_stand_ins.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/macos/updater/sparkle_updater.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::HandDispatch;
using karno::test::StandardErrorCapture;
using ::testing::IsEmpty;

// The framework's side of a session: it tells and asks the object that the bridge gave it.
class MacUpdateSession : public testing::Test {
 protected:
  MacUpdateSession() {
    updater_->startUpdater();
    object_ = objc::Object::retaining(framework_.delegate);
    framework_.standIns().answer(
        "URL", objc::Object::retaining(objc::send(objc::classNamed("NSURL"), "URLWithString:",
                                                  objc::string("https://localhost/Karno-2.0.zip"))));
  }

  std::string feed() {
    return shown(tellDelegate<objc::Id>(object_.get(), "feedURLStringForUpdater:", objc::Id()));
  }
  bool relaunches() {
    return tellDelegate<objc::Boolean>(object_.get(), "updaterShouldRelaunchApplication:", objc::Id()) != 0;
  }
  void tell(const char* message) { tellDelegate(object_.get(), message, objc::Id()); }
  void tell(const char* message, objc::Id object) {
    tellDelegate(object_.get(), message, objc::Id(), object);
  }
  void tell(const char* message, objc::Id object, objc::Id another) {
    tellDelegate(object_.get(), message, objc::Id(), object, another);
  }
  void loadAndFind() {
    feed();
    loadAndFindWithoutFeed();
  }
  void loadAndFindWithoutFeed() {
    tell("updater:didFinishLoadingAppcast:", nullptr);
    tell("updater:didFindValidUpdate:", item_.get());
  }
  void choose(objc::Integer choice) {
    tellDelegate(object_.get(), "updater:userDidMakeChoice:forUpdate:state:", objc::Id(), choice, item_.get(),
                 objc::Id());
  }
  void endCycle(objc::Id error) {
    tellDelegate(object_.get(), "updater:didFinishUpdateCycleForUpdateCheck:error:", objc::Id(),
                 objc::Integer{0}, error);
  }

  const objc::AutoreleasePool pool_;
  SparkleStandIns framework_;
  RecordingUpdaterDelegate delegate_;
  HandDispatch dispatch_;
  std::unique_ptr<Updater> updater_ = SparkleUpdaters(dispatch_).makeUpdater(delegate_);
  objc::Object object_;
  const objc::Object item_ = standInItem();
  const objc::Object request_ = standInRequest();
};

TEST_F(MacUpdateSession, AnUpdateIsFoundAndInstalled) {
  delegate_.relaunch = false;

  loadAndFind();
  choose(1);
  tell("updater:willDownloadUpdate:withRequest:", item_.get(), request_.get());
  tell("updater:didDownloadUpdate:", item_.get());
  tell("updater:willExtractUpdate:", item_.get());
  tell("updater:didExtractUpdate:", item_.get());
  tell("updater:willInstallUpdate:", item_.get());

  EXPECT_FALSE(relaunches());
  EXPECT_THAT(delegate_.told,
              ElementsAre("feed?", "loaded", "found Karno 2.0 (2.0)", "choice 1 Karno 2.0 (2.0)",
                          "downloading Karno 2.0 (2.0) from https://localhost/Karno-2.0.zip",
                          "downloaded Karno 2.0 (2.0)", "extracting Karno 2.0 (2.0)",
                          "extracted Karno 2.0 (2.0)", "installing Karno 2.0 (2.0)", "relaunch?"));
}

TEST_F(MacUpdateSession, TheDelegateChoosesTheFeed) { EXPECT_EQ(feed(), "https://localhost/feed.xml"); }

TEST_F(MacUpdateSession, TheDelegateMayWantARelaunch) { EXPECT_TRUE(relaunches()); }

TEST_F(MacUpdateSession, NoneIsFound) {
  const objc::Id none = explainedError("SUSparkleErrorDomain", 1001, "You’re up to date!");

  feed();
  tell("updater:didFinishLoadingAppcast:", nullptr);
  tell("updaterDidNotFindUpdate:error:", none);
  tell("updater:didAbortWithError:", none);
  endCycle(none);

  EXPECT_THAT(delegate_.told,
              ElementsAre("feed?", "loaded", "none SUSparkleErrorDomain 1001: You’re up to date!",
                          "aborted SUSparkleErrorDomain 1001: You’re up to date!"));
}

TEST_F(MacUpdateSession, TheUserSkipsTheUpdate) {
  loadAndFind();
  choose(0);
  endCycle(nullptr);

  EXPECT_THAT(delegate_.told,
              ElementsAre("feed?", "loaded", "found Karno 2.0 (2.0)", "choice 0 Karno 2.0 (2.0)"));
}

TEST_F(MacUpdateSession, TheUserDismissesTheUpdate) {
  loadAndFind();
  choose(2);
  endCycle(nullptr);

  EXPECT_THAT(delegate_.told,
              ElementsAre("feed?", "loaded", "found Karno 2.0 (2.0)", "choice 2 Karno 2.0 (2.0)"));
}

TEST_F(MacUpdateSession, AChoiceThatNobodyKnowsKeepsItsNumber) {
  choose(7);
  choose(-3);

  EXPECT_THAT(delegate_.told, ElementsAre("choice 7 Karno 2.0 (2.0)", "choice -3 Karno 2.0 (2.0)"));
}

TEST_F(MacUpdateSession, TheUserCancelsTheDownload) {
  loadAndFind();
  choose(1);
  tell("updater:willDownloadUpdate:withRequest:", item_.get(), request_.get());
  tell("userDidCancelDownload:");
  endCycle(nullptr);

  EXPECT_THAT(delegate_.told,
              ElementsAre("feed?", "loaded", "found Karno 2.0 (2.0)", "choice 1 Karno 2.0 (2.0)",
                          "downloading Karno 2.0 (2.0) from https://localhost/Karno-2.0.zip", "cancelled"));
}

TEST_F(MacUpdateSession, TheDownloadFails) {
  const objc::Id failure = explainedError("SUSparkleErrorDomain", 2001, "The connection was lost.");

  tell("updater:willDownloadUpdate:withRequest:", item_.get(), request_.get());
  tell("updater:failedToDownloadUpdate:error:", item_.get(), failure);
  tell("updater:didAbortWithError:", failure);
  endCycle(failure);

  EXPECT_THAT(delegate_.told,
              ElementsAre("downloading Karno 2.0 (2.0) from https://localhost/Karno-2.0.zip",
                          "no download Karno 2.0 (2.0) SUSparkleErrorDomain 2001: The connection was lost.",
                          "aborted SUSparkleErrorDomain 2001: The connection was lost."));
}

TEST_F(MacUpdateSession, ABadSignatureEndsIt) {
  const objc::Id failure = explainedError("SUSparkleErrorDomain", 3001, "The update is improperly signed.");

  tell("updater:willExtractUpdate:", item_.get());
  tell("updater:didAbortWithError:", failure);

  EXPECT_THAT(delegate_.told,
              ElementsAre("extracting Karno 2.0 (2.0)",
                          "aborted SUSparkleErrorDomain 3001: The update is improperly signed."));
}

TEST_F(MacUpdateSession, AnItemWithoutATitleHasNone) {
  framework_.standIns().answer("title", objc::Object());

  tell("updater:didFindValidUpdate:", item_.get());

  EXPECT_THAT(delegate_.told, ElementsAre("found (no title) (2.0)"));
}

// A log and a terminal would obey them.
TEST_F(MacUpdateSession, AnItemsTextsHaveEscapesForWhatIsNotToBeSeen) {
  framework_.standIns().answer("title", objc::string("Karno\n2026-01-01\033[2J"));
  framework_.standIns().answer("displayVersionString", objc::string("2.0\u202E"));

  tell("updater:didFindValidUpdate:", item_.get());

  EXPECT_THAT(delegate_.told, ElementsAre("found Karno\\n2026-01-01\\u001b[2J (2.0\\u202e)"));
}

TEST_F(MacUpdateSession, AnErrorsTextHasEscapesForWhatIsNotToBeSeen) {
  const objc::Id failure =
      explainedError("SUSparkleErrorDomain", 1000, "Bad feed\n2026-01-01 [INFO] All is well");

  tell("updater:didAbortWithError:", failure);

  EXPECT_THAT(delegate_.told,
              ElementsAre("aborted SUSparkleErrorDomain 1000: Bad feed\\n2026-01-01 [INFO] All is well"));
}

TEST_F(MacUpdateSession, AnItemWithoutAVersionToShowShowsTheOneThatIsCompared) {
  framework_.standIns().answer("displayVersionString", objc::Object());
  tell("updater:didFindValidUpdate:", item_.get());
  framework_.standIns().answer("displayVersionString", objc::string(""));
  tell("updater:didFindValidUpdate:", item_.get());

  EXPECT_THAT(delegate_.told, ElementsAre("found Karno 2.0 (200)", "found Karno 2.0 (200)"));
}

TEST_F(MacUpdateSession, NilWhereAnObjectBelongsDoesNoHarm) {
  tell("updater:didFindValidUpdate:", nullptr);
  tell("updater:willDownloadUpdate:withRequest:", nullptr, nullptr);
  tell("updater:didAbortWithError:", nullptr);

  EXPECT_THAT(delegate_.told, ElementsAre("found (no title) ()", "downloading (no title) () from ",
                                          "aborted SUSparkleErrorDomain 0: unknown error"));
}

TEST_F(MacUpdateSession, AnErrorThatSaysNothingIsPassedOnAllTheSame) {
  tell("updater:didAbortWithError:", standInError().get());
  tell("updater:failedToDownloadUpdate:error:", item_.get(), standInError().get());
  tell("updaterDidNotFindUpdate:error:", standInError().get());

  EXPECT_THAT(delegate_.told,
              ElementsAre("aborted  4005: ", "no download Karno 2.0 (2.0)  4005: ", "none  4005: "));
}

TEST_F(MacUpdateSession, NothingIsKeptOfWhatTheFrameworkShows) {
  const int before = framework_.standIns().liveCount();
  {
    const objc::AutoreleasePool pool;
    tell("updater:didFindValidUpdate:", item_.get());
    choose(1);
    tell("updater:willDownloadUpdate:withRequest:", item_.get(), request_.get());
    tell("updater:didAbortWithError:", standInError().get());
  }

  EXPECT_EQ(framework_.standIns().liveCount(), before);
}

// Not even while a call is on its way from another thread.
TEST_F(MacUpdateSession, NothingIsKeptOfWhatTheFrameworkShowsOnAnotherThread) {
  const int before = framework_.standIns().liveCount();
  std::thread([this] {
    const cocoa::ThreadPoolScope pool;
    const objc::Object shortLived = standInItem();
    tell("updater:didFindValidUpdate:", shortLived.get());
  }).join();
  EXPECT_EQ(framework_.standIns().liveCount(), before);

  dispatch_.byHand().runUntil([this] { return delegate_.told.size() == 1; });

  EXPECT_THAT(delegate_.told, ElementsAre("found Karno 2.0 (2.0)"));
}

TEST_F(MacUpdateSession, TheFeedIsOwnedByTheCallersPoolAlone) {
  const objc::AutoreleasePool pool;

  const auto feed = tellDelegate<objc::Id>(object_.get(), "feedURLStringForUpdater:", objc::Id());

  EXPECT_EQ(tellDelegate<objc::UInteger>(feed, "retainCount"), 1U);
}

TEST_F(MacUpdateSession, AnItemThatRaisesIsToldNobodyAndEndsOnTheConsole) {
  const StandardErrorCapture console;
  framework_.standIns().raise();

  tell("updater:didFindValidUpdate:", item_.get());
  tell("updater:willDownloadUpdate:withRequest:", item_.get(), request_.get());

  EXPECT_THAT(delegate_.told, IsEmpty());
  EXPECT_EQ(console.text(),
            "updater:didFindValidUpdate:: raised by a stand-in\n"
            "updater:willDownloadUpdate:withRequest:: raised by a stand-in\n");
}

TEST_F(MacUpdateSession, WhatAnotherThreadTellsIsToldOnTheMainThreadInOrder) {
  std::thread([this] {
    const cocoa::ThreadPoolScope pool;
    loadAndFindWithoutFeed();
    choose(1);
  }).join();
  EXPECT_THAT(delegate_.told, IsEmpty());

  dispatch_.byHand().runUntil([this] { return delegate_.told.size() == 3; });

  EXPECT_THAT(delegate_.told, ElementsAre("loaded", "found Karno 2.0 (2.0)", "choice 1 Karno 2.0 (2.0)"));
  EXPECT_EQ(delegate_.toldOnOtherThreads, 0);
}

TEST_F(MacUpdateSession, AnotherThreadWaitsForTheAnswersOfTheMainThread) {
  std::string answer;
  bool relaunch = false;
  std::thread elsewhere([&] {
    const cocoa::ThreadPoolScope pool;
    answer = feed();
    relaunch = relaunches();
  });
  dispatch_.byHand().runUntil([this] { return delegate_.told.size() == 2; });
  elsewhere.join();

  EXPECT_EQ(answer, "https://localhost/feed.xml");
  EXPECT_TRUE(relaunch);
  EXPECT_THAT(delegate_.told, ElementsAre("feed?", "relaunch?"));
  EXPECT_EQ(delegate_.toldOnOtherThreads, 0);
}

TEST_F(MacUpdateSession, AMainThreadThatDoesNotAnswerMeansNoFeedAndNoRelaunch) {
  constexpr std::int64_t kMoment = 20'000'000;  // nanoseconds
  const auto impatient = SparkleUpdaters(dispatch_, {.delegate = kMoment}).makeUpdater(delegate_);
  impatient->startUpdater();
  object_ = objc::Object::retaining(framework_.delegate);
  std::string answer;
  bool relaunch = true;

  std::thread([&] {
    const cocoa::ThreadPoolScope pool;
    answer = feed();
    relaunch = relaunches();
  }).join();

  EXPECT_EQ(answer, "nil");
  EXPECT_FALSE(relaunch);
  EXPECT_THAT(delegate_.told, IsEmpty());
}

TEST_F(MacUpdateSession, AnExceptionOfTheDelegateEndsOnTheConsole) {
  const StandardErrorCapture console;
  delegate_.onEveryCall = [] { throw std::runtime_error("out of order"); };

  EXPECT_EQ(feed(), "nil");
  EXPECT_FALSE(relaunches());
  tell("updater:didFindValidUpdate:", item_.get());

  EXPECT_EQ(console.text(),
            "feedURLStringForUpdater:: out of order\n"
            "updaterShouldRelaunchApplication:: out of order\n"
            "updater:didFindValidUpdate:: out of order\n");
}

TEST_F(MacUpdateSession, AnExceptionOfTheDelegateOnBehalfOfAnotherThreadEndsOnTheConsole) {
  const StandardErrorCapture console;
  delegate_.onEveryCall = [] { throw std::runtime_error("out of order"); };
  std::string answer;
  std::thread elsewhere([&] {
    const cocoa::ThreadPoolScope pool;
    answer = feed();
  });
  dispatch_.byHand().runUntil([this] { return delegate_.told.size() == 1; });
  elsewhere.join();

  EXPECT_EQ(answer, "nil");
  EXPECT_EQ(console.text(), "feedURLStringForUpdater:: out of order\n");
}

TEST_F(MacUpdateSession, TheObjectMayOutliveTheUpdaterAndTellsNobodyThen) {
  updater_.reset();

  tell("updater:didFindValidUpdate:", item_.get());

  EXPECT_EQ(feed(), "nil");
  EXPECT_FALSE(relaunches());
  EXPECT_THAT(delegate_.told, IsEmpty());
}

TEST_F(MacUpdateSession, WhatIsOnItsWayWhenTheUpdaterGoesIsToldNobody) {
  std::thread([this] {
    const cocoa::ThreadPoolScope pool;
    tell("updater:didFindValidUpdate:", item_.get());
  }).join();
  updater_.reset();

  dispatch_.byHand().runFor(std::chrono::milliseconds(1));

  EXPECT_THAT(delegate_.told, IsEmpty());
}

}  // namespace
}  // namespace karno::platform::trial
