#include "../support/message_check.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/cocoa/runtime/class_builder.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using objc::AutoreleasePool;
using objc::ClassBuilder;
using objc::classNamed;
using objc::Id;
using objc::Object;
using objc::registered;

class MessageCheckTest : public testing::Test {
 protected:
  std::string missingRow(Id receiver, objc::Selector selector) {
    return check_.missingRow(receiver, registered(selector));
  }

  std::string missingRow(Class receiver, objc::Selector selector) {
    return missingRow(reinterpret_cast<Id>(receiver), selector);
  }

 private:
  const AutoreleasePool pool_;
  MessageCheck check_;
};

Object madeInstanceOf(Class cls) { return Object::adopting(objc::send(objc::send(cls, "alloc"), "init")); }

TEST_F(MessageCheckTest, ASelectorThatOnlyAnotherClassHasIsMissing) {
  EXPECT_EQ(missingRow(objc::make("NSMutableArray").get(), "title"), "-[GSMutableArray title]");
}

TEST_F(MessageCheckTest, ARowForAClassAboveCovers) {
  const Object text = objc::string("a text");

  EXPECT_EQ(missingRow(text.get(), "length"), "");
  EXPECT_EQ(missingRow(text.get(), "retain"), "");
}

TEST_F(MessageCheckTest, ARowForInstancesDoesNotCoverTheClass) {
  EXPECT_EQ(missingRow(classNamed("NSURL"), "fileURLWithPath:"), "");
  EXPECT_EQ(missingRow(classNamed("NSURL"), "absoluteString"), "+[NSURL absoluteString]");
}

TEST_F(MessageCheckTest, ARowForTheClassDoesNotCoverItsInstances) {
  const Id url = objc::send(classNamed("NSURL"), "fileURLWithPath:", objc::string("/Applications"));

  EXPECT_EQ(missingRow(url, "absoluteString"), "");
  EXPECT_EQ(missingRow(url, "fileURLWithPath:"), "-[NSURL fileURLWithPath:]");
}

TEST_F(MessageCheckTest, AClassOfOursCountsAsTheOneItWasBuiltOn) {
  static const Class made = ClassBuilder("KarnoTestWindow", classNamed("NSWindow")).registerClass();

  EXPECT_EQ(missingRow(made, "alloc"), "");
  EXPECT_EQ(missingRow(made, "processInfo"), "+[KarnoTestWindow processInfo]");
}

TEST_F(MessageCheckTest, AStandInCountsAsTheOneClassThatHasAllItIsSent) {
  static const Class made = ClassBuilder("KarnoTestItem", classNamed("NSObject")).registerClass();
  const Object item = madeInstanceOf(made);

  EXPECT_EQ(missingRow(item.get(), "title"), "");
  EXPECT_EQ(missingRow(item.get(), "versionString"), "");
  EXPECT_EQ(missingRow(item.get(), "setTitle:"), "-[KarnoTestItem setTitle:]");
}

}  // namespace
}  // namespace karno::platform::trial
