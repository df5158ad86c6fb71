#include "platform/macos/regular_expression.h"

#include <gtest/gtest.h>

#include "platform/cocoa/objc.h"
#include "platform/cocoa/strings.h"
#include "stand_in.h"

namespace karno::platform::test {
namespace {

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

}  // namespace
}  // namespace karno::platform::test
