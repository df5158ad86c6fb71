#include "platform/macos/text/regular_expression.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;

std::shared_ptr<const RegularExpression> expression(std::string_view pattern) {
  return FoundationRegularExpression::make(pattern, false).value();
}

TEST(FoundationRegularExpression, FindsTheFirstMatch) {
  EXPECT_EQ("4.4.1", expression("[0-9.]+")->firstMatch("v4.4.1, 4.5"));
  EXPECT_EQ("üü", expression("ü+")->firstMatch("😀 Grüüße"));
  EXPECT_EQ(std::nullopt, expression("c")->firstMatch("ab"));
}

TEST(FoundationRegularExpression, ReplacesEveryMatch) {
  EXPECT_EQ("bonono", expression("a")->stringByReplacingMatches("banana", "o"));
  EXPECT_EQ("banana", expression("x")->stringByReplacingMatches("banana", "o"));
  EXPECT_EQ("home:me, work:you",
            expression("(\\w+)@(\\w+)")->stringByReplacingMatches("me@home, you@work", "$2:$1"));
  EXPECT_EQ("a$0c", expression("b")->stringByReplacingMatches("abc", "\\$0"));
}

TEST(FoundationRegularExpression, IgnoresCaseOnlyWhenAsked) {
  EXPECT_EQ("KARNO", FoundationRegularExpression::make("karno", true).value()->firstMatch("KARNO"));
  EXPECT_EQ(std::nullopt, FoundationRegularExpression::make("karno", false).value()->firstMatch("KARNO"));
}

TEST(FoundationRegularExpression, NamesABadPatternWhereTheSystemDoesNot) {
  const auto result = FoundationRegularExpression::make("a(b", false);

  EXPECT_EQ(Error("NSCocoaErrorDomain", 2048, {{"NSLocalizedDescription", "The value “a(b” is invalid."}}),
            result.error());
}

objc::Id failToCompile(objc::Id, objc::Sel, objc::Id, objc::UInteger, objc::Id* error) {
  *error = StandIns::current().answerTo("error");
  return nullptr;
}

objc::Id describeFailure(objc::Id, objc::Sel) {
  return recordAndAnswer(objc::registered("localizedDescription"));
}

TEST(FoundationRegularExpression, GivesTheSystemsReasonForABadPattern) {
  StandIns standIns;
  const Class error = StandInClass("KarnoPatternError")
                          .method("localizedDescription", "@@:", describeFailure)
                          .registerClass();
  const Class expressions =
      StandInClass("KarnoBadExpression")
          .classMethod("regularExpressionWithPattern:options:error:", "@@:@Q^@", failToCompile)
          .registerClass();
  const objc::ClassOverride override("NSRegularExpression", expressions);
  standIns.answer("error", instanceOf(error));
  standIns.answer("localizedDescription", objc::string("Der Wert „(“ ist ungültig."));

  const auto result = FoundationRegularExpression::make("(", false);

  EXPECT_EQ("Der Wert „(“ ist ungültig.", result.error().localizedDescription());
}

objc::Id compile(objc::Id, objc::Sel selector, objc::Id pattern, objc::UInteger options, objc::Id* error) {
  *error = StandIns::current().answerTo("error left over");
  return recordAndAnswer(selector, fmt::format("{} {}", shown(pattern), options));
}

objc::Id firstMatch(objc::Id, objc::Sel selector, objc::Id text, objc::UInteger options, objc::Range range) {
  return recordAndAnswer(selector,
                         fmt::format("{} {} {}+{}", shown(text), options, range.location, range.length));
}

objc::Id replaceMatches(objc::Id, objc::Sel selector, objc::Id text, objc::UInteger options,
                        objc::Range range, objc::Id replacement) {
  return recordAndAnswer(selector, fmt::format("{} {} {}+{} {}", shown(text), options, range.location,
                                               range.length, shown(replacement)));
}

Class expressionClass() {
  static const Class made =
      StandInClass("StandInExpression")
          .classMethod("regularExpressionWithPattern:options:error:", "@@:@Q^@", compile)
          .method("firstMatchInString:options:range:", "@@:@Q{_NSRange=QQ}", firstMatch)
          .method("stringByReplacingMatchesInString:options:range:withTemplate:", "@@:@Q{_NSRange=QQ}@",
                  replaceMatches)
          .registerClass();
  return made;
}

objc::Range rangeOfMatch(objc::Id, objc::Sel) { return {1, 2}; }

Class resultClass() {
  static const Class made =
      StandInClass("StandInMatch").method("range", "{_NSRange=QQ}@:", rangeOfMatch).registerClass();
  return made;
}

class MacRegularExpression : public testing::Test {
 protected:
  MacRegularExpression() {
    standIns_.answer("regularExpressionWithPattern:options:error:", instanceOf(expressionClass()));
  }

  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSRegularExpression", expressionClass()};
};

// The text has two characters of one unit and one of two.
TEST_F(MacRegularExpression, AsksForTheWholeTextInUnits) {
  standIns_.answer("firstMatchInString:options:range:", instanceOf(resultClass()));
  standIns_.answer("stringByReplacingMatchesInString:options:range:withTemplate:", objc::string("replaced"));
  const auto expression = FoundationRegularExpression::make("p", true).value();

  EXPECT_EQ(expression->firstMatch("ä😀b"), "😀");
  EXPECT_EQ(expression->stringByReplacingMatches("ä😀b", "$1"), "replaced");
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("regularExpressionWithPattern:options:error: p 1",
                          "firstMatchInString:options:range: ä😀b 0 0+4",
                          "stringByReplacingMatchesInString:options:range:withTemplate: ä😀b 0 0+4 $1"));
}

TEST_F(MacRegularExpression, IsMadeWhateverIsLeftInTheError) {
  standIns_.answer("error left over", instanceOf(resultClass()));

  EXPECT_TRUE(FoundationRegularExpression::make("p", false));
}

TEST_F(MacRegularExpression, IsHeldExactlyAsLongAsItsOwnerDoes) {
  auto expression = FoundationRegularExpression::make("p", false).value();
  standIns_.answer("regularExpressionWithPattern:options:error:", objc::Object());
  const int countWhileHeld = standIns_.liveCount();

  expression.reset();

  EXPECT_EQ(countWhileHeld, 1);
  EXPECT_EQ(standIns_.liveCount(), 0);
}

TEST_F(MacRegularExpression, GivesNothingBackThatItWasOnlyLent) {
  standIns_.answer("firstMatchInString:options:range:", instanceOf(resultClass()));
  const auto expression = FoundationRegularExpression::make("p", false).value();

  expression->firstMatch("text");

  EXPECT_EQ(standIns_.liveCount(), 2);
  standIns_.answer("firstMatchInString:options:range:", objc::Object());
  EXPECT_EQ(standIns_.liveCount(), 1);
}

TEST_F(MacRegularExpression, LeavesATextThatThePlatformReplacesByNothing) {
  const auto expression = FoundationRegularExpression::make("p", false).value();

  EXPECT_EQ(expression->stringByReplacingMatches("text", "$1"), "text");
}

TEST_F(MacRegularExpression, WhatIsRaisedMeansNoMatchAndEndsOnTheConsole) {
  const StandardErrorCapture console;
  const auto expression = FoundationRegularExpression::make("p", false).value();
  standIns_.raise();

  EXPECT_EQ(expression->firstMatch("text"), std::nullopt);
  EXPECT_EQ(expression->stringByReplacingMatches("text", "$1"), "text");
  EXPECT_EQ(console.text(),
            "searching a text: raised by a stand-in\n"
            "replacing in a text: raised by a stand-in\n");
}

TEST_F(MacRegularExpression, WhatIsRaisedOverAPatternIsAnError) {
  standIns_.raise();

  const auto result = FoundationRegularExpression::make("p", false);

  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().localizedDescription(), "compiling an expression: raised by a stand-in");
}

}  // namespace
}  // namespace karno::platform::trial
