#include "platform/cocoa/runtime/objc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/cocoa/runtime/class_builder.h"

namespace karno::platform::objc {
namespace {

using testing::IsEmpty;

// An object that counts the references to it.
int references = 0;

Id countRetain(Id self) {
  ++references;
  return self;
}
void countRelease(Id) { --references; }

Id makeCounted() {
  static const Class counted = ClassBuilder("KarnoTestCounted", classNamed("NSObject"))
                                   .method<countRetain>("retain")
                                   .method<countRelease>("release")
                                   .registerClass();
  references = 1;
  return send(send(counted, "alloc"), "init");
}

Class standInForAlerts() {
  static const Class made = ClassBuilder("KarnoTestStandInAlert", classNamed("NSObject")).registerClass();
  return made;
}

std::vector<std::string> rowsThatAre(bool present, Where where) {
  std::vector<std::string> names;
  for (const Message& message : kMessages) {
    if (message.where == where && isPresent(message) == present) {
      names.push_back(message.kind + ("[" + std::string(message.className)) + " " +
                      std::string(message.selector) + "]");
    }
  }
  return names;
}

TEST(MessageTable, GNUstepHasEveryMessageThatIsSentEverywhere) {
  EXPECT_THAT(rowsThatAre(false, Where::Everywhere), IsEmpty());
}

TEST(MessageTable, GNUstepHasEveryMessageThatIsSentOnlyThere) {
  EXPECT_THAT(rowsThatAre(false, Where::GNUstepOnly), IsEmpty());
}

TEST(MessageTable, GNUstepLacksEveryMessageThatIsSentOnlyOnMacOS) {
  EXPECT_THAT(rowsThatAre(true, Where::MacOSOnly), IsEmpty());
}

TEST(MessageTable, GNUstepLacksEveryMessageOfTheUpdaterFramework) {
  EXPECT_THAT(rowsThatAre(true, Where::UpdaterFramework), IsEmpty());
}

TEST(Send, ANullReceiverAnswersZero) {
  EXPECT_EQ(send(Id{nullptr}, "retain"), nullptr);
  EXPECT_EQ(send<UInteger>(Id{nullptr}, "length"), 0U);
  EXPECT_EQ(send<double>(Id{nullptr}, "doubleValue"), 0.0);
  EXPECT_FALSE(send<bool>(Id{nullptr}, "boolValue"));
}

TEST(Send, NumbersArriveUnchanged) {
  const AutoreleasePool pool;

  const Id number = send(classNamed("NSNumber"), "numberWithLongLong:", 9'007'199'254'740'993LL);

  EXPECT_EQ(send<long long>(number, "longLongValue"), 9'007'199'254'740'993LL);
  EXPECT_TRUE(send<bool>(number, "boolValue"));
}

TEST(ObjectHandle, AdoptingTakesTheReferenceOver) {
  { const Object owner = Object::adopting(makeCounted()); }

  EXPECT_EQ(references, 0);
}

TEST(ObjectHandle, RetainingAddsAReference) {
  const Id borrowed = makeCounted();

  {
    const Object owner = Object::retaining(borrowed);
    EXPECT_EQ(references, 2);
  }

  EXPECT_EQ(references, 1);
}

TEST(ObjectHandle, CopiesRetainAndMovesDoNot) {
  Object first = Object::adopting(makeCounted());

  const Object copy = first;
  EXPECT_EQ(references, 2);
  const Object moved = std::move(first);

  EXPECT_EQ(references, 2);
  EXPECT_FALSE(first);
}

TEST(ObjectHandle, AssignmentReleasesWhatWasOwned) {
  Object owner = Object::adopting(makeCounted());

  owner = Object();

  EXPECT_EQ(references, 0);
}

TEST(ClassLookUp, AnOverrideStandsInUntilItsEnd) {
  const Class original = classNamed("NSAlert");

  {
    const ClassOverride override("NSAlert", standInForAlerts());
    EXPECT_EQ(classNamed("NSAlert"), standInForAlerts());
  }

  EXPECT_EQ(classNamed("NSAlert"), original);
}

TEST(ClassLookUp, APresentMessageIsLookedForInTheStandIn) {
  const ClassOverride override("NSAlert", standInForAlerts());

  EXPECT_FALSE(isPresent({"NSAlert", '-', "runModal"}));
}

}  // namespace
}  // namespace karno::platform::objc
