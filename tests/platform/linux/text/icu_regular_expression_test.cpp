#include "platform/linux/text/icu_regular_expression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace karno::platform {
namespace {

std::shared_ptr<const RegularExpression> expression(const std::string& pattern) {
  return IcuRegularExpression::make(pattern, false).value();
}

std::string replaced(const std::string& pattern, const std::string& text, const std::string& replacement) {
  return expression(pattern)->stringByReplacingMatches(text, replacement);
}

TEST(IcuRegularExpression, FindsTheFirstMatch) {
  EXPECT_EQ(expression("[0-9.]+")->firstMatch("v4.4.1, 4.5"), "4.4.1");
  EXPECT_EQ(expression("ü+")->firstMatch("Grüüße"), "üü");
  EXPECT_EQ(expression("b*")->firstMatch("ab"), "");
  EXPECT_EQ(expression("c")->firstMatch("ab"), std::nullopt);
  EXPECT_EQ(expression("c")->firstMatch(""), std::nullopt);
}

TEST(IcuRegularExpression, ReplacesEveryMatch) {
  EXPECT_EQ(replaced("a", "banana", "o"), "bonono");
  EXPECT_EQ(replaced("x", "banana", "o"), "banana");
  EXPECT_EQ(replaced("an", "banana", ""), "ba");
  EXPECT_EQ(replaced("b*", "abc", "-"), "-a--c-");
  EXPECT_EQ(replaced("a", "", "o"), "");
  EXPECT_EQ(replaced("ß", "Straße 😀", "ss"), "Strasse 😀");
}

TEST(IcuRegularExpression, PutsGroupsInPlaceOfTheirNumbers) {
  EXPECT_EQ(replaced("(\\w+)@(\\w+)", "me@home, you@work", "$2:$1"), "home:me, work:you");
  EXPECT_EQ(replaced("b", "abc", "[$0$0]"), "a[bb]c");
  EXPECT_EQ(replaced("(a)|(b)", "ab", "<$1$2>"), "<a><b>");
}

TEST(IcuRegularExpression, PutsNothingInPlaceOfAGroupThatDoesNotExist) {
  EXPECT_EQ(replaced("b", "abc", "$1"), "ac");
  EXPECT_EQ(replaced("(b)", "abc", "<$9>"), "a<>c");
}

TEST(IcuRegularExpression, TakesAsManyDigitsForAGroupAsTheHighestGroupHas) {
  EXPECT_EQ(replaced("(b)", "abc", "$12"), "ab2c");
  EXPECT_EQ(replaced("(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", "abcdefghij", "$10$01$011"), "jaa1");
  EXPECT_EQ(replaced("b", "abc", "$100000000000000000000"), "a00000000000000000000c");
}

TEST(IcuRegularExpression, KeepsADollarSignThatNamesNoGroup) {
  EXPECT_EQ(replaced("b", "abc", "$"), "a$c");
  EXPECT_EQ(replaced("b", "abc", "$x $$0 ${name}"), "a$x $b ${name}c");
}

TEST(IcuRegularExpression, TakesTheCharacterAfterABackslashAsItIs) {
  EXPECT_EQ(replaced("b", "abc", "\\$0"), "a$0c");
  EXPECT_EQ(replaced("b", "abc", "\\\\0"), "a\\0c");
  EXPECT_EQ(replaced("b", "abc", "\\n"), "anc");
  EXPECT_EQ(replaced("b", "abc", "\\"), "ac");
  EXPECT_EQ(replaced("b", "abc", "\\😀"), "a😀c");
}

TEST(IcuRegularExpression, CanIgnoreCase) {
  EXPECT_EQ(IcuRegularExpression::make("STRASSE", true).value()->firstMatch("Straße 1"), "Straße");
}

TEST(IcuRegularExpression, SaysWhatIsWrongWithAPattern) {
  const auto result = IcuRegularExpression::make("a(b", false);

  EXPECT_EQ(result.error(),
            Error("NSCocoaErrorDomain", 2048,
                  {{"NSLocalizedDescription", "The value “a(b” is invalid."},
                   {"NSDebugDescription", "U_REGEX_MISMATCHED_PAREN in line 1, after 3 characters"},
                   {"NSInvalidValue", "a(b"}}));
}

TEST(IcuRegularExpression, TakesAnyBytes) {
  EXPECT_EQ(replaced("b", "\xFF b", "\xFE"), "\xEF\xBF\xBD \xEF\xBF\xBD");
  EXPECT_EQ(expression("\xFF")->firstMatch("a\xFE"), "\xEF\xBF\xBD");
  EXPECT_EQ(replaced("b", std::string("a\0b", 3), "c"), std::string("a\0c", 3));
}

TEST(IcuRegularExpression, EndsWhenItTakesForEver) {
  const std::string text = std::string(60, 'a') + "b";
  const auto before = std::chrono::steady_clock::now();

  EXPECT_EQ(expression("^(a+)+$")->firstMatch(text), std::nullopt);
  EXPECT_EQ(replaced("^(a+)+$", text, "x"), text);

  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(40));
}

TEST(IcuRegularExpression, ServesManyThreadsAtOnce) {
  const auto shared = expression("\\{\\s*\\{\\s*name\\s*\\}\\s*\\}");
  std::vector<std::vector<std::string>> texts(4);
  {
    std::vector<std::jthread> threads;
    for (auto& own : texts) {
      threads.emplace_back([&] {
        for (int count = 0; count < 500; ++count)
          own.push_back(shared->stringByReplacingMatches("Hello {{ name }}!", "you"));
      });
    }
  }

  for (const auto& own : texts) EXPECT_THAT(own, testing::Each("Hello you!"));
}

}  // namespace
}  // namespace karno::platform
