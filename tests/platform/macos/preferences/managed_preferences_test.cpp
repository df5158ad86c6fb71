#include "platform/macos/preferences/managed_preferences.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "../../support/standard_error_capture.h"
#include "../core_foundation.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;

objc::Boolean isKindOfClass(objc::Id, objc::Sel selector, Class) {
  recordAndAnswer(selector);
  return 0;
}

Class foreignClass() {
  static const Class made =
      StandInClass("StandInForeignValue").method("isKindOfClass:", "C@:#", isKindOfClass).registerClass();
  return made;
}

class MacManagedPreferencesTest : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  CoreFoundation foundation_;
  MacManagedPreferences preferences_;
};

TEST_F(MacManagedPreferencesTest, AreReadByKeyAndApplicationAndReleased) {
  foundation_.answer("value", objc::string("https://example.org"));

  EXPECT_EQ(preferences_.copyAppValue("serverURL", "it.vantul.karno"), Value("https://example.org"));
  EXPECT_THAT(foundation_.lines(),
              ElementsAre("CFPreferencesCopyAppValue \"serverURL\" of \"it.vantul.karno\""));
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacManagedPreferencesTest, KeepTheKindOfTheValue) {
  foundation_.answer("value", cocoa::objectOf(Value(true)));
  EXPECT_EQ(preferences_.copyAppValue("key", "application"), Value(true));

  foundation_.answer("value", cocoa::objectOf(Value(std::int64_t{1})));
  EXPECT_EQ(preferences_.copyAppValue("key", "application"), Value(std::int64_t{1}));

  foundation_.answer("value", cocoa::objectOf(Value(Value::Array{"a", true})));
  EXPECT_EQ(preferences_.copyAppValue("key", "application"), Value(Value::Array{"a", true}));
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacManagedPreferencesTest, AreAbsentWhereNobodySetThem) {
  EXPECT_EQ(preferences_.copyAppValue("key", "application"), std::nullopt);
}

TEST_F(MacManagedPreferencesTest, AreAbsentAndReleasedWhenTheyAreNoPropertyList) {
  const int countBefore = standIns_.liveCount();
  foundation_.answer("value", instanceOf(foreignClass()));

  EXPECT_EQ(preferences_.copyAppValue("key", "application"), std::nullopt);

  foundation_.answer("value", objc::Object());
  EXPECT_EQ(foundation_.ownedCount(), 0);
  EXPECT_EQ(standIns_.liveCount(), countBefore);
}

TEST_F(MacManagedPreferencesTest, MayBeReadOnAnyThread) {
  foundation_.answer("value", objc::string("https://example.org"));
  std::optional<Value> read;

  std::thread([&] {
    const cocoa::ThreadPoolScope pool;
    read = preferences_.copyAppValue("serverURL", "it.vantul.karno");
  }).join();

  EXPECT_EQ(read, Value("https://example.org"));
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacManagedPreferencesTest, WhatIsRaisedMeansAbsentAndEndsOnTheConsole) {
  const StandardErrorCapture console;
  foundation_.raisingFunction = "CFPreferencesCopyAppValue";

  EXPECT_EQ(preferences_.copyAppValue("key", "application"), std::nullopt);
  EXPECT_EQ(console.text(), "reading a managed preference: raised by a stand-in\n");
}

TEST_F(MacManagedPreferencesTest, AValueThatRaisesIsReleasedAllTheSame) {
  const StandardErrorCapture console;
  foundation_.answer("value", instanceOf(foreignClass()));
  standIns_.raise();

  EXPECT_EQ(preferences_.copyAppValue("key", "application"), std::nullopt);
  EXPECT_EQ(foundation_.ownedCount(), 0);
  EXPECT_EQ(console.text(), "reading a managed preference: raised by a stand-in\n");
}

TEST_F(MacManagedPreferencesTest, TellWhetherTheyAreForced) {
  EXPECT_FALSE(preferences_.isAppValueForced("serverURL", "it.vantul.karno"));
  foundation_.isForced = 1;
  EXPECT_TRUE(preferences_.isAppValueForced("serverURL", "it.vantul.karno"));

  EXPECT_EQ(foundation_.lines().front(),
            "CFPreferencesAppValueIsForced \"serverURL\" of \"it.vantul.karno\"");
}

TEST_F(MacManagedPreferencesTest, AreNotForcedWhenAskingRaises) {
  const StandardErrorCapture console;
  foundation_.isForced = 1;
  foundation_.raisingFunction = "CFPreferencesAppValueIsForced";

  EXPECT_FALSE(preferences_.isAppValueForced("key", "application"));
  EXPECT_EQ(console.text(), "asking whether a preference is managed: raised by a stand-in\n");
}

}  // namespace
}  // namespace karno::platform::trial
