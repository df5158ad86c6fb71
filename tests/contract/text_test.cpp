#include "platform/text.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "world.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;

class TextContract : public Contract {
 protected:
  std::vector<std::string> wordsOf(const std::string& text) const {
    std::vector<std::string> words;
    for (const auto& range : text_.wordRanges(text))
      words.push_back(text.substr(range.begin, range.end - range.begin));
    return words;
  }

  std::string replaced(const std::string& pattern, const std::string& text, const std::string& by) const {
    return text_.makeRegularExpression(pattern).value()->stringByReplacingMatches(text, by);
  }

  platform::Text& text_ = services_.text;
};

TEST_P(TextContract, FormatsADateByItsPattern) {
  const platform::Date date =
      platform::Date(std::chrono::seconds(1'709'644'029)) + std::chrono::milliseconds(42);

  EXPECT_EQ(text_.makeDateFormatter("yyyy-MM 'at' ss:SSS")->stringFromDate(date), "2024-03 at 09:042");
}

TEST_P(TextContract, FindsWords) {
  EXPECT_THAT(wordsOf("Don't panic, w\u00F6rld: 3.5!"), ElementsAre("Don't", "panic", "w\u00F6rld", "3.5"));
  EXPECT_THAT(wordsOf(" - "), ElementsAre());
}

TEST_P(TextContract, ChangesCase) {
  EXPECT_EQ(text_.capitalise("\u00E4NNE"), "\u00C4nne");
  EXPECT_EQ(text_.lowercase("\u00C4B"), "\u00E4b");
  EXPECT_EQ(text_.uppercase("\u00DFa"), "SSA");
  EXPECT_EQ(text_.lowercase("A\xFF"), "a\uFFFD");
}

TEST_P(TextContract, OrdersDigitsByTheirValue) {
  const std::pair<const char*, const char*> ascending[] = {{"9", "10"}, {"1.2", "1.10"}, {"13.0", "13.0.0"},
                                                           {"", "0"},   {"A", "a"},      {"a2", "b1"}};
  for (const auto& [lower, higher] : ascending) {
    EXPECT_LT(text_.compareNumerically(lower, higher), 0) << lower;
    EXPECT_GT(text_.compareNumerically(higher, lower), 0) << lower;
  }
  EXPECT_EQ(text_.compareNumerically("1.02", "1.2"), 0);
}

TEST_P(TextContract, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(text_.isEqualCaseInsensitive("\u00C4b", "\u00E4B"));
  EXPECT_FALSE(text_.isEqualCaseInsensitive("a", "\u00E4"));
  EXPECT_FALSE(text_.isEqualCaseInsensitive("a", "aa"));
}

TEST_P(TextContract, FindsAndReplacesMatches) {
  EXPECT_EQ(text_.makeRegularExpression("[0-9]+").value()->firstMatch("a12b34"), "12");
  EXPECT_EQ(text_.makeRegularExpression("x").value()->firstMatch("a12b34"), std::nullopt);
  EXPECT_EQ(replaced("([a-z])([0-9])", "a1 b2", "$2$1"), "1a 2b");
  EXPECT_EQ(replaced("a", "banana", "<$0\\$1$7>"), "b<a$1>n<a$1>n<a$1>");
}

TEST_P(TextContract, SearchesWithAndWithoutRegardToCase) {
  EXPECT_TRUE(text_.containsMatch("n.k", "Karnok", false));
  EXPECT_FALSE(text_.containsMatch("KAR", "Karnok", false));
  EXPECT_TRUE(text_.containsMatch("KAR", "Karnok", true));
}

TEST_P(TextContract, SaysThatAPatternIsWrong) {
  EXPECT_FALSE(text_.makeRegularExpression("(a"));
  EXPECT_FALSE(text_.containsMatch("(a", "(a", false));
}

INSTANTIATE_TEST_SUITE_P(Fake, TextContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, TextContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
