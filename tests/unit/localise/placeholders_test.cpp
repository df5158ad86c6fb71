#include <fmt/format.h>
#include <gmock/gmock.h>

#include <random>

#include "elements_are.h"
#include "fake_platform.h"
#include "localise/expression_cache.h"
#include "localise/karno_localise.h"
#include "localise/plain_placeholder.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;

std::string filled(const std::string& key, const std::string& value, const std::string& text) {
  return KarnoLocalise::stringByReplacingKey(key, value, text);
}

TEST(Placeholders, MayHaveWhiteSpaceInThem) {
  FakePlatform machine;

  EXPECT_EQ(filled("name", "x", "{{name}}|{{ name }}|{ { name } }|{\t{\nname\r\f}\v}"), "x|x|x|x");
  EXPECT_EQ(filled("name", "x", "{\u00A0{\u2003name }\u3000}"), "x");
}

TEST(Placeholders, AreFoundWhereverTheyStand) {
  FakePlatform machine;

  EXPECT_EQ(filled("n", "3", "{{n}}{{n}}, {{n}"), "33, {{n}");
  EXPECT_EQ(filled("n", "3", "{{{n}}}"), "{3}");
  EXPECT_EQ(filled("n", "3", "{{ {{n}} }}"), "{{ 3 }}");
  EXPECT_EQ(filled("n", "", "a{{n}}b"), "ab");
  EXPECT_EQ(filled("n", "3", ""), "");
}

TEST(Placeholders, TakeParametersThatAreGatheredAtRunTime) {
  FakePlatform machine;
  std::vector<KarnoLocalise::Param> params;
  for (const char* const key : {"a", "b"}) params.push_back({.key = key, .value = "x"});

  EXPECT_EQ(KarnoLocalise::localise("{{ a }} {{ b }}", params), "x x");
  EXPECT_EQ(KarnoLocalise::localise("{{ a }} {{ b }}", params, LocaliseOptionUppercase), "X X");
}

TEST(Placeholders, OfOtherNamesStay) {
  FakePlatform machine;

  EXPECT_EQ(filled("n", "3", "{{nn}} {{N}} {{ n n }} {n} {{}} n"), "{{nn}} {{N}} {{ n n }} {n} {{}} n");
}

TEST(Placeholders, AreNotFilledAgainInTheirOwnValue) {
  FakePlatform machine;

  EXPECT_EQ(filled("n", "{{n}}", "{{n}}{{n}}"), "{{n}}{{n}}");
}

TEST(Placeholders, TakeTheValueForAReplacementTemplate) {
  FakePlatform machine;

  EXPECT_EQ(filled("n", "<$0>", "a {{ n }} b"), "a <{{ n }}> b");
  EXPECT_EQ(filled("n", "$1$25", "a{{n}}b"), "a5b");
  EXPECT_EQ(filled("n", "\\$0 \\\\ \\n", "{{n}}"), "$0 \\ n");
  EXPECT_EQ(filled("n", "5 $", "{{n}}"), "5 $");
}

TEST(Placeholders, TakeTheKeyForAnExpression) {
  FakePlatform machine;

  EXPECT_EQ(filled("[ab]", "x", "{{a}}{{b}}{{c}}"), "xx{{c}}");
  EXPECT_EQ(filled("(\\w+)", "$1", "{{a}} {{ b }}"), "a b");
  EXPECT_EQ(filled("", "x", "{{}} {{ }} {{a}}"), "x x {{a}}");
  EXPECT_EQ(filled("größe", "x", "{{ größe }}"), "x");
}

TEST(Placeholders, WarnOfAKeyThatMakesNoExpressionEveryTime) {
  FakePlatform machine;
  machine.withStrings("{}");

  EXPECT_EQ(filled("a(", "x", "{{ a( }}"), "{{ a( }}");
  EXPECT_EQ(filled("a(", "x", "again"), "again");

  machine.runFor(1);
  EXPECT_THAT(machine.log(),
              ElementsAre(Line("WARN",
                               "KarnoLocalise: Failed to build regex key 'a(' for '{{ a( }}'. Reason=The "
                               "value “\\{\\s*\\{\\s*a(\\s*\\}\\s*\\}” is invalid."),
                          Line("WARN",
                               "KarnoLocalise: Failed to build regex key 'a(' for 'again'. Reason=The value "
                               "“\\{\\s*\\{\\s*a(\\s*\\}\\s*\\}” is invalid.")));
}

TEST(Placeholders, NeedNoTables) {
  FakePlatform machine;

  EXPECT_EQ(filled("n", "3", "{{n}}"), "3");
  EXPECT_EQ(filled("n", "$0", "{{n}}"), "{{n}}");

  machine.runFor(1);
  EXPECT_THAT(machine.log(), IsEmpty());
}

TEST(PlainPlaceholders, LeaveToTheExpressionWhatOnlyItKnows) {
  EXPECT_EQ(textWithPlainPlaceholdersFilled("", "x", "{{}}"), std::nullopt);
  EXPECT_EQ(textWithPlainPlaceholdersFilled("a.", "x", "{{ab}}"), std::nullopt);
  EXPECT_EQ(textWithPlainPlaceholdersFilled("a", "$0", "{{a}}"), std::nullopt);
  EXPECT_EQ(textWithPlainPlaceholdersFilled("a", "\\", "{{a}}"), std::nullopt);
  EXPECT_EQ(textWithPlainPlaceholdersFilled("a", "x", "{{\u00A0a}}"), std::nullopt);
  EXPECT_EQ(textWithPlainPlaceholdersFilled("a", "x", "{{a}} é"), "x é");
}

// Texts of the few characters that matter, in any order.
std::string randomText(std::mt19937& random, std::size_t length) {
  static const std::vector<std::string> kPieces = {
      "{",    "{",      "{{", "}",  "}", "}}",    "a",  "a",  "ab",   " ",      "\t",     "\v",
      "\x1C", "\u00A0", "é",  "\n", ".", "{{a}}", "\r", "\0", "\x7F", "\u2028", "\u200B", "_"};
  std::string text;
  for (std::size_t count = 0; count < length; ++count) text += kPieces[random() % kPieces.size()];
  return text;
}

TEST(PlainPlaceholders, GiveWhatTheExpressionGives) {
  FakePlatform machine;
  std::mt19937 random(static_cast<std::mt19937::result_type>(machine.seed));
  const auto expression = ExpressionCache().expressionForKey("a").value();
  int plainOnes = 0;

  for (int round = 0; round < 20'000; ++round) {
    const std::string text = randomText(random, 1 + random() % 12);
    if (const auto plain = textWithPlainPlaceholdersFilled("a", "x", text)) {
      ++plainOnes;
      ASSERT_EQ(*plain, expression->stringByReplacingMatches(text, "x")) << "seed " << machine.seed;
    }
  }

  EXPECT_GT(plainOnes, 5'000);
}

TEST(ExpressionCache, CompilesAnExpressionOnce) {
  FakePlatform machine;
  ExpressionCache cache;

  EXPECT_EQ(cache.expressionForKey("a").value(), cache.expressionForKey("a").value());
  EXPECT_NE(cache.expressionForKey("a").value(), cache.expressionForKey("b").value());
}

TEST(ExpressionCache, ForgetsAllWhenThereAreTooMany) {
  FakePlatform machine;
  ExpressionCache cache;
  const auto first = cache.expressionForKey("0").value();

  for (std::size_t key = 1; key <= ExpressionCache::kExpressionsMax; ++key)
    cache.expressionForKey(fmt::format("{}", key));

  EXPECT_NE(cache.expressionForKey("0").value(), first);
  EXPECT_EQ(cache.expressionForKey("64").value(), cache.expressionForKey("64").value());
}

TEST(ExpressionCache, RemembersNoError) {
  FakePlatform machine;
  ExpressionCache cache;

  EXPECT_FALSE(cache.expressionForKey("("));
  EXPECT_FALSE(cache.expressionForKey("("));
}

}  // namespace
}  // namespace karno
