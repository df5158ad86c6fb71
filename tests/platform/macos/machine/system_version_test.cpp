#include "platform/macos/machine/system_version.h"

#include <fmt/format.h>
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

objc::Id versionedProcessInfo(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

objc::Boolean isAtLeast(objc::Id, objc::Sel selector, OperatingSystemVersion version) {
  const std::string text = fmt::format("{}.{}.{}", version.major, version.minor, version.patch);
  return recordAndAnswer(selector, text) != nullptr;
}

Class versionedProcessInfoClass() {
  static const Class made = StandInClass("StandInProcessInfo")
                                .classMethod("processInfo", "@@:", versionedProcessInfo)
                                .method("isOperatingSystemAtLeastVersion:", "C@:{?=qqq}", isAtLeast)
                                .registerClass();
  return made;
}

class MacSystemVersion : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_{};
  StandIns standIns_;
  const objc::ClassOverride override_{"NSProcessInfo", versionedProcessInfoClass()};
  const FoundationSystemVersion systemVersion_{};
};

TEST_F(MacSystemVersion, AsksThePlatformWithThreeNumbers) {
  standIns_.answer("processInfo", instanceOf(versionedProcessInfoClass()));
  standIns_.answer("isOperatingSystemAtLeastVersion:", objc::string("yes"));

  EXPECT_TRUE(systemVersion_.isAtLeast(12, 3, 1));
  EXPECT_THAT(standIns_.messages(), ElementsAre("processInfo", "isOperatingSystemAtLeastVersion: 12.3.1"));
}

TEST_F(MacSystemVersion, IsNotMetWhenThePlatformSaysNo) {
  standIns_.answer("processInfo", instanceOf(versionedProcessInfoClass()));

  EXPECT_FALSE(systemVersion_.isAtLeast(12, 3, 0));
}

TEST_F(MacSystemVersion, IsNotMetWithoutAnAnswer) { EXPECT_FALSE(systemVersion_.isAtLeast(10, 14, 6)); }

TEST_F(MacSystemVersion, IsNotMetWhenAskingRaises) {
  const StandardErrorCapture console{};
  standIns_.raise();

  EXPECT_FALSE(systemVersion_.isAtLeast(10, 14, 6));
  EXPECT_EQ(console.text(), "asking for the system's version: raised by a stand-in\n");
}

// GNUstep has a number of its own.
TEST_F(MacSystemVersion, TellsTheNumberOfAppKit) {
  EXPECT_EQ(824, FoundationSystemVersion().appKitVersionNumber());
}

}  // namespace
}  // namespace karno::platform::trial
