#include "platform/macos/preferences/user_defaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;

objc::Id initWithSuiteName(objc::Id self, objc::Sel selector, objc::Id name) {
  recordAndAnswer(selector, shown(name));
  return self;
}

objc::Id refuseSuite(objc::Id self, objc::Sel selector, objc::Id name) {
  recordAndAnswer(selector, shown(name));
  objc::send<void>(self, "release");  // what an initialiser that answers nil does
  return nullptr;
}

objc::Id standardUserDefaults(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

objc::Id objectForKey(objc::Id, objc::Sel selector, objc::Id key) {
  return recordAndAnswer(selector, shown(key));
}

objc::Boolean boolForKey(objc::Id, objc::Sel selector, objc::Id key) {
  return recordAndAnswer(selector, shown(key)) != nullptr;
}

void setBoolForKey(objc::Id, objc::Sel selector, objc::Boolean value, objc::Id key) {
  recordAndAnswer(selector, std::to_string(value) + " " + shown(key));
}

objc::Boolean synchronize(objc::Id, objc::Sel selector) {
  recordAndAnswer(selector);
  return true;
}

Class suiteClass() {
  static const Class made = StandInClass("StandInUserDefaults")
                                .classMethod("standardUserDefaults", "@@:", standardUserDefaults)
                                .method("initWithSuiteName:", "@@:@", initWithSuiteName)
                                .method("objectForKey:", "@@:@", objectForKey)
                                .method("boolForKey:", "C@:@", boolForKey)
                                .method("setBool:forKey:", "v@:C@", setBoolForKey)
                                .method("synchronize", "C@:", synchronize)
                                .registerClass();
  return made;
}

Class refusingClass() {
  static const Class made = StandInClass("StandInRefusedUserDefaults")
                                .method("initWithSuiteName:", "@@:@", refuseSuite)
                                .registerClass();
  return made;
}

class MacUserDefaults : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSUserDefaults", suiteClass()};
  FoundationUserDefaultsStore store_;
};

TEST_F(MacUserDefaults, OpensASuiteByItsName) {
  const auto suite = store_.makeSuite("it.vantul.karno");

  EXPECT_THAT(standIns_.messages(), ElementsAre("initWithSuiteName: it.vantul.karno"));
}

TEST_F(MacUserDefaults, HoldsASuiteExactlyAsLongAsItsOwnerDoes) {
  auto suite = store_.makeSuite("it.vantul.karno");
  const int countWhileHeld = standIns_.liveCount();

  suite.reset();

  EXPECT_EQ(1, countWhileHeld);
  EXPECT_EQ(0, standIns_.liveCount());
}

TEST_F(MacUserDefaults, ReadsAValue) {
  standIns_.answer("objectForKey:", objc::string("YES"));
  const auto suite = store_.makeSuite("it.vantul.karno");

  const std::optional<Value> value = suite->objectForKey("verboseLogging");

  EXPECT_EQ(Value("YES"), value);
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("initWithSuiteName: it.vantul.karno", "objectForKey: verboseLogging"));
}

TEST_F(MacUserDefaults, HaveNoValueWhereThePlatformHasNone) {
  const auto suite = store_.makeSuite("it.vantul.karno");

  EXPECT_EQ(std::nullopt, suite->objectForKey("verboseLogging"));
}

TEST_F(MacUserDefaults, LeaveTheReadingOfABooleanToThePlatform) {
  standIns_.answer("boolForKey:", objc::string("anything"));
  const auto suite = store_.makeSuite("it.vantul.karno");

  EXPECT_TRUE(suite->boolForKey("useFileProvider"));
  EXPECT_EQ("boolForKey: useFileProvider", standIns_.messages().back());
}

TEST_F(MacUserDefaults, StoreABoolean) {
  const auto suite = store_.makeSuite("it.vantul.karno");

  suite->setBool(true, "useFileProvider");
  suite->setBool(false, "useFileProviderVerified");
  suite->synchronize();

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("initWithSuiteName: it.vantul.karno", "setBool:forKey: 1 useFileProvider",
                          "setBool:forKey: 0 useFileProviderVerified", "synchronize"));
}

TEST_F(MacUserDefaults, AskForTheStandardOnesOnce) {
  standIns_.answer("standardUserDefaults", instanceOf(suiteClass()));

  UserDefaults& first = store_.standardUserDefaults();
  UserDefaults& second = store_.standardUserDefaults();

  EXPECT_EQ(&first, &second);
  EXPECT_THAT(standIns_.messages(), ElementsAre("standardUserDefaults"));
}

TEST_F(MacUserDefaults, TakeARaisedExceptionForNoValueAndSaySo) {
  const auto suite = store_.makeSuite("it.vantul.karno");
  const StandardErrorCapture console;
  standIns_.raise();

  EXPECT_EQ(std::nullopt, suite->objectForKey("verboseLogging"));
  EXPECT_FALSE(suite->boolForKey("verboseLogging"));
  suite->setBool(true, "verboseLogging");
  suite->synchronize();
  EXPECT_EQ(console.text(),
            "reading a user default: raised by a stand-in\n"
            "reading a user default: raised by a stand-in\n"
            "storing a user default: raised by a stand-in\n"
            "storing user defaults: raised by a stand-in\n");
}

TEST_F(MacUserDefaults, ReadAsEmptyWhereOpeningThemRaises) {
  const StandardErrorCapture console;
  standIns_.raise();

  const auto suite = store_.makeSuite("it.vantul.karno");
  UserDefaults& standard = store_.standardUserDefaults();

  EXPECT_EQ(std::nullopt, suite->objectForKey("verboseLogging"));
  EXPECT_EQ(std::nullopt, standard.objectForKey("verboseLogging"));
  EXPECT_EQ(console.text(),
            "opening user defaults: raised by a stand-in\n"
            "opening user defaults: raised by a stand-in\n");
}

TEST_F(MacUserDefaults, ReadAsEmptyWhereThePlatformHasNoStandardOnes) {
  const StandardErrorCapture console;
  UserDefaults& standard = store_.standardUserDefaults();

  standard.setBool(true, "verboseLogging");
  standard.synchronize();

  EXPECT_EQ(std::nullopt, standard.objectForKey("verboseLogging"));
  EXPECT_EQ(console.text(), "User defaults: there is no suite standard to store verboseLogging in\n");
}

TEST_F(MacUserDefaults, GiveNothingBackThatTheyWereOnlyLent) {
  const auto suite = store_.makeSuite("it.vantul.karno");
  standIns_.answer("objectForKey:", instanceOf(suiteClass()));
  const int countBefore = standIns_.liveCount();

  EXPECT_EQ(std::nullopt, suite->objectForKey("no property list"));

  EXPECT_EQ(countBefore, standIns_.liveCount());
  standIns_.answer("objectForKey:", objc::Object());
  EXPECT_EQ(countBefore - 1, standIns_.liveCount());
}

TEST_F(MacUserDefaults, ReadAsEmptyWhereThePlatformRefusesTheSuite) {
  const objc::ClassOverride refusing("NSUserDefaults", refusingClass());

  const auto suite = store_.makeSuite("it.vantul.KarnoWrapper");

  EXPECT_EQ(std::nullopt, suite->objectForKey("verboseLogging"));
  EXPECT_FALSE(suite->boolForKey("verboseLogging"));
  EXPECT_EQ(0, standIns_.liveCount());
}

TEST_F(MacUserDefaults, ReportAWriteToARefusedSuite) {
  const objc::ClassOverride refusing("NSUserDefaults", refusingClass());
  const auto suite = store_.makeSuite("it.vantul.KarnoWrapper");
  testing::internal::CaptureStderr();

  suite->setBool(true, "useFileProvider");

  EXPECT_EQ("User defaults: there is no suite it.vantul.KarnoWrapper to store useFileProvider in\n",
            testing::internal::GetCapturedStderr());
}

}  // namespace
}  // namespace karno::platform::trial
