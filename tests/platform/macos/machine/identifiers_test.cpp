#include "platform/macos/machine/identifiers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

// NSUUID is GNUstep's here, which does not mark its UUIDs as random ones.
TEST(MacIdentifiers, AreUUIDsInCapitalsAndDiffer) {
  FoundationIdentifiers identifiers;

  const std::string first = identifiers.makeUUID();
  const std::string second = identifiers.makeUUID();

  EXPECT_THAT(first,
              ::testing::ContainsRegex("^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}$"));
  EXPECT_NE(first, second);
}

objc::Id answering(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

Class uuidClass() {
  static const Class made = StandInClass("StandInUUID")
                                .classMethod("UUID", "@@:", answering)
                                .method("UUIDString", "@@:", answering)
                                .registerClass();
  return made;
}

class MacIdentifiersOfStandIns : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSUUID", uuidClass()};
  FoundationIdentifiers identifiers_;
};

TEST_F(MacIdentifiersOfStandIns, AreAskedForAndNotGivenBack) {
  standIns_.answer("UUID", instanceOf(uuidClass()));
  standIns_.answer("UUIDString", objc::string("0E984725-C51C-4BF4-9960-E1C80E27ABA0"));

  EXPECT_EQ(identifiers_.makeUUID(), "0E984725-C51C-4BF4-9960-E1C80E27ABA0");
  EXPECT_THAT(standIns_.messages(), ::testing::ElementsAre("UUID", "UUIDString"));
  EXPECT_EQ(standIns_.liveCount(), 1);
}

TEST_F(MacIdentifiersOfStandIns, AreEmptyWhereThereAreNone) { EXPECT_EQ(identifiers_.makeUUID(), ""); }

TEST_F(MacIdentifiersOfStandIns, AreEmptyWhereAskingRaisesWhichEndsOnTheConsole) {
  const karno::test::StandardErrorCapture console;
  standIns_.raise();

  EXPECT_EQ(identifiers_.makeUUID(), "");
  EXPECT_EQ(console.text(), "making an identifier: raised by a stand-in\n");
}

}  // namespace
}  // namespace karno::platform::trial
