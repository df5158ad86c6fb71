#include "platform/macos/bundles/bundles.h"

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

objc::Id withoutArgument(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }
objc::Id withOne(objc::Id, objc::Sel selector, objc::Id first) {
  return recordAndAnswer(selector, shown(first));
}
objc::Id withTwo(objc::Id, objc::Sel selector, objc::Id first, objc::Id second) {
  return recordAndAnswer(selector, shown(first) + " " + shown(second));
}
objc::Id withThree(objc::Id, objc::Sel selector, objc::Id first, objc::Id second, objc::Id third) {
  return recordAndAnswer(selector, shown(first) + " " + shown(second) + " " + shown(third));
}

Class bundleClass() {
  static const Class made = StandInClass("StandInBundle")
                                .classMethod("mainBundle", "@@:", withoutArgument)
                                .classMethod("bundleWithPath:", "@@:@", withOne)
                                .method("bundlePath", "@@:", withoutArgument)
                                .method("executablePath", "@@:", withoutArgument)
                                .method("executableURL", "@@:", withoutArgument)
                                .method("bundleIdentifier", "@@:", withoutArgument)
                                .method("objectForInfoDictionaryKey:", "@@:@", withOne)
                                .method("localizedStringForKey:value:table:", "@@:@@@", withThree)
                                .method("pathForResource:ofType:", "@@:@@", withTwo)
                                .method("pathForResource:ofType:inDirectory:", "@@:@@@", withThree)
                                .registerClass();
  return made;
}

Class urlClass() {
  static const Class made =
      StandInClass("StandInURL").method("absoluteString", "@@:", withoutArgument).registerClass();
  return made;
}

class MacBundles : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSBundle", bundleClass()};
  const FoundationBundle bundle_{instanceOf(bundleClass())};
  FoundationBundles bundles_;
};

TEST_F(MacBundles, OpenAFolder) {
  standIns_.answer("bundleWithPath:", instanceOf(bundleClass()));
  standIns_.answer("bundlePath", objc::string("/Applications/Karno.app"));

  const auto bundle = bundles_.bundleAtPath("/Applications/Karno.app");

  ASSERT_NE(nullptr, bundle);
  EXPECT_EQ("/Applications/Karno.app", bundle->bundlePath());
  EXPECT_THAT(standIns_.messages(), ElementsAre("bundleWithPath: /Applications/Karno.app", "bundlePath"));
}

TEST_F(MacBundles, AreNoneWhereThereIsNoFolder) {
  EXPECT_EQ(nullptr, bundles_.bundleAtPath("/Applications/None.app"));
}

TEST_F(MacBundles, HoldABundleExactlyAsLongAsItsOwnerDoes) {
  const int countBefore = standIns_.liveCount();
  standIns_.answer("bundleWithPath:", instanceOf(bundleClass()));
  auto bundle = bundles_.bundleAtPath("/Applications/Karno.app");
  standIns_.answer("bundleWithPath:", objc::Object());
  const int countWhileHeld = standIns_.liveCount();

  bundle.reset();

  EXPECT_EQ(countBefore + 1, countWhileHeld);
  EXPECT_EQ(countBefore, standIns_.liveCount());
}

TEST_F(MacBundles, AskForTheMainOneOnce) {
  standIns_.answer("mainBundle", instanceOf(bundleClass()));

  const Bundle& first = bundles_.mainBundle();
  const Bundle& second = bundles_.mainBundle();

  EXPECT_EQ(&first, &second);
  EXPECT_THAT(standIns_.messages(), ElementsAre("mainBundle"));
}

// NSBundle takes /usr/local/bin for the bundle of a program that runs as /usr/local/bin/karnoctl, a link.
TEST_F(MacBundles, FindTheMainOneOfAProgramThatWasStartedByALink) {
  const FoundationBundles bundles("/Applications/Karno.app/Contents/MacOS/karnoctl");
  standIns_.answer("mainBundle", instanceOf(bundleClass()));
  standIns_.answer("bundleWithPath:", instanceOf(bundleClass()));

  static_cast<void>(bundles.mainBundle());

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("mainBundle", "bundleIdentifier", "bundleWithPath: /Applications/Karno.app"));
}

TEST_F(MacBundles, KeepTheMainOneThatHasAnIdentifier) {
  const FoundationBundles bundles("/Applications/Karno.app/Contents/MacOS/Karno");
  standIns_.answer("mainBundle", instanceOf(bundleClass()));
  standIns_.answer("bundleIdentifier", objc::string("it.vantul.KarnoWrapper"));

  static_cast<void>(bundles.mainBundle());

  EXPECT_THAT(standIns_.messages(), ElementsAre("mainBundle", "bundleIdentifier"));
}

TEST_F(MacBundles, TellPathsAndAddresses) {
  standIns_.answer("executablePath", objc::string("/Applications/Karno.app/Contents/MacOS/Karno"));
  standIns_.answer("executableURL", instanceOf(urlClass()));
  standIns_.answer("absoluteString", objc::string("file:///Applications/Karno.app/"));

  EXPECT_EQ("/Applications/Karno.app/Contents/MacOS/Karno", bundle_.executablePath());
  EXPECT_EQ("file:///Applications/Karno.app/", bundle_.executableURL());
  EXPECT_THAT(standIns_.messages(), ElementsAre("executablePath", "executableURL", "absoluteString"));
}

TEST_F(MacBundles, ReadInfoPlist) {
  standIns_.answer("objectForInfoDictionaryKey:", objc::string("1.2.3"));
  standIns_.answer("bundleIdentifier", objc::string("it.vantul.KarnoWrapper"));

  EXPECT_EQ(Value("1.2.3"), bundle_.objectForInfoDictionaryKey("CFBundleShortVersionString"));
  EXPECT_EQ("it.vantul.KarnoWrapper", bundle_.bundleIdentifier());
  EXPECT_EQ("objectForInfoDictionaryKey: CFBundleShortVersionString", standIns_.messages().front());
}

TEST_F(MacBundles, LeaveTheLanguageToThePlatformWithoutADirectory) {
  standIns_.answer("pathForResource:ofType:", objc::string("/x/de.lproj/Strings.json"));

  EXPECT_EQ("/x/de.lproj/Strings.json", bundle_.pathForResource("Strings", "json", ""));
  EXPECT_THAT(standIns_.messages(), ElementsAre("pathForResource:ofType: Strings json"));
}

TEST_F(MacBundles, LookIntoADirectory) {
  standIns_.answer("pathForResource:ofType:inDirectory:", objc::string("/x/Base.lproj/Strings.json"));

  EXPECT_EQ("/x/Base.lproj/Strings.json", bundle_.pathForResource("Strings", "json", "Base.lproj"));
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("pathForResource:ofType:inDirectory: Strings json Base.lproj"));
}

TEST_F(MacBundles, TellNothingOfWhatIsNil) {
  EXPECT_EQ("", bundle_.bundlePath());
  EXPECT_EQ(std::nullopt, bundle_.executablePath());
  EXPECT_EQ(std::nullopt, bundle_.executableURL());
  EXPECT_EQ(std::nullopt, bundle_.bundleIdentifier());
  EXPECT_EQ(std::nullopt, bundle_.objectForInfoDictionaryKey("CFBundleVersion"));
  EXPECT_EQ(std::nullopt, bundle_.pathForResource("Strings", "json", ""));
  EXPECT_EQ(std::nullopt, bundle_.pathForResource("Strings", "json", "Base.lproj"));
}

TEST_F(MacBundles, TakeARaisedExceptionForAbsenceAndSaySo) {
  const StandardErrorCapture console;
  standIns_.raise();

  EXPECT_EQ(nullptr, bundles_.bundleAtPath("/Applications/Karno.app"));
  EXPECT_EQ("", bundle_.bundlePath());
  EXPECT_EQ(std::nullopt, bundle_.objectForInfoDictionaryKey("CFBundleVersion"));
  EXPECT_EQ(console.text(),
            "opening a bundle: raised by a stand-in\n"
            "asking a bundle: raised by a stand-in\n"
            "reading Info.plist: raised by a stand-in\n");
}

TEST_F(MacBundles, HaveAnEmptyMainOneWhereThePlatformRaises) {
  const StandardErrorCapture console;
  standIns_.raise();

  EXPECT_EQ("", bundles_.mainBundle().bundlePath());
  EXPECT_EQ(std::nullopt, bundles_.mainBundle().bundleIdentifier());
  EXPECT_EQ(console.text(), "opening the main bundle: raised by a stand-in\n");
}

TEST_F(MacBundles, HaveAnEmptyMainOneWhereThePlatformHasNone) {
  EXPECT_EQ("", bundles_.mainBundle().bundlePath());
  EXPECT_EQ("key", bundles_.mainBundle().localisedString("key", "table"));
}

TEST_F(MacBundles, GiveNothingBackThatTheyWereOnlyLent) {
  const int countBefore = standIns_.liveCount();
  standIns_.answer("executableURL", instanceOf(urlClass()));
  standIns_.answer("objectForInfoDictionaryKey:", instanceOf(urlClass()));

  bundle_.executableURL();
  bundle_.objectForInfoDictionaryKey("key");

  EXPECT_EQ(countBefore + 2, standIns_.liveCount());
  standIns_.answer("executableURL", objc::Object());
  standIns_.answer("objectForInfoDictionaryKey:", objc::Object());
  EXPECT_EQ(countBefore, standIns_.liveCount());
}

TEST_F(MacBundles, LookTextsUpWithoutAValueOfTheirOwn) {
  standIns_.answer("localizedStringForKey:value:table:", objc::string("Nicht bewegen"));

  EXPECT_EQ("Nicht bewegen", bundle_.localisedString("Do Not Move", "MoveApplication"));
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("localizedStringForKey:value:table: Do Not Move  MoveApplication"));
}

TEST_F(MacBundles, AnswerTheKeyWhenTheyRaise) {
  const StandardErrorCapture console;
  standIns_.raise();

  EXPECT_EQ("Do Not Move", bundle_.localisedString("Do Not Move", "MoveApplication"));
}

}  // namespace
}  // namespace karno::platform::trial
