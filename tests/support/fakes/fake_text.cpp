#include "fake_text.h"

#include <utility>

#include "text_rules.h"

namespace karno::test {

class FakeText::Formatter final : public platform::DateFormatter {
 public:
  Formatter(std::string pattern, std::shared_ptr<Rules> rules)
      : pattern_(std::move(pattern)), rules_(std::move(rules)) {}

  std::string stringFromDate(platform::Date date) const override {
    if (generation_ != rules_->generation) {
      formatter_ = rules_->text->makeDateFormatter(pattern_);
      generation_ = rules_->generation;
    }
    return formatter_->stringFromDate(date);
  }

 private:
  const std::string pattern_;
  const std::shared_ptr<Rules> rules_;
  mutable std::unique_ptr<platform::DateFormatter> formatter_;
  mutable int generation_ = 0;
};

FakeText::FakeText() { makeRules(); }

FakeText::~FakeText() = default;

void FakeText::setLocale(std::string locale) {
  locale_ = std::move(locale);
  makeRules();
}

void FakeText::setTimeZone(std::string timeZone) {
  timeZone_ = std::move(timeZone);
  makeRules();
}

void FakeText::makeRules() {
  rules_->text = textRules(locale_, timeZone_);
  ++rules_->generation;
}

std::unique_ptr<platform::DateFormatter> FakeText::makeDateFormatter(const std::string& pattern) const {
  return std::make_unique<Formatter>(pattern, rules_);
}

std::vector<platform::TextRange> FakeText::wordRanges(std::string_view text) const {
  return rules_->text->wordRanges(text);
}

std::string FakeText::capitalise(std::string_view word) const { return rules_->text->capitalise(word); }

std::string FakeText::lowercase(std::string_view text) const { return rules_->text->lowercase(text); }

std::string FakeText::uppercase(std::string_view text) const { return rules_->text->uppercase(text); }

int FakeText::compareNumerically(std::string_view a, std::string_view b) const {
  return rules_->text->compareNumerically(a, b);
}

platform::Result<std::shared_ptr<const platform::RegularExpression>> FakeText::makeRegularExpression(
    const std::string& pattern) const {
  return rules_->text->makeRegularExpression(pattern);
}

bool FakeText::isEqualCaseInsensitive(std::string_view a, std::string_view b) const {
  return rules_->text->isEqualCaseInsensitive(a, b);
}

bool FakeText::containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const {
  return rules_->text->containsMatch(pattern, text, ignoreCase);
}

}  // namespace karno::test
