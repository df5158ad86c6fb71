#include "platform/linux/text/icu_text.h"

#include <unicode/brkiter.h>
#include <unicode/casemap.h>
#include <unicode/normlzr.h>
#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <utility>

#include "platform/linux/text/icu_date_formatter.h"
#include "platform/linux/text/icu_regular_expression.h"
#include "platform/linux/text/icu_strings.h"
#include "platform/linux/text/plain_date_formatter.h"
#include "platform/numeric_order.h"

namespace karno::platform {
namespace {

struct CloseText {
  void operator()(UText* text) const { ::utext_close(text); }
};

icu::Locale localeOf(const std::optional<std::string>& identifier) {
  return identifier ? icu::Locale(identifier->c_str()) : icu::Locale::getDefault();
}

}  // namespace

IcuText::IcuText(std::optional<std::string> locale, std::optional<std::string> timeZone)
    : locale_(std::move(locale)), timeZone_(std::move(timeZone)) {}

std::unique_ptr<DateFormatter> IcuText::makeDateFormatter(const std::string& pattern) const {
  const icu::Locale locale = localeOf(locale_);
  if (auto plain = makePlainDateFormatter(pattern, locale, timeZone_)) return plain;
  return std::make_unique<IcuDateFormatter>(pattern, locale, timeZone_);
}

std::vector<TextRange> IcuText::wordRanges(std::string_view text) const {
  UErrorCode status = U_ZERO_ERROR;
  // Over UTF-8 the iterator counts in bytes of the original text, also where these are no UTF-8.
  const std::unique_ptr<UText, CloseText> bytes(
      ::utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status));
  const std::unique_ptr<icu::BreakIterator> words(
      icu::BreakIterator::createWordInstance(localeOf(locale_), status));
  if (U_FAILURE(status)) return {};
  words->setText(bytes.get(), status);
  if (U_FAILURE(status)) return {};

  std::vector<TextRange> ranges;
  std::int32_t begin = words->first();
  for (std::int32_t end = words->next(); end != icu::BreakIterator::DONE; end = words->next()) {
    if (words->getRuleStatus() >= UBRK_WORD_NONE_LIMIT) {
      ranges.push_back({.begin = static_cast<std::size_t>(begin), .end = static_cast<std::size_t>(end)});
    }
    begin = end;
  }
  return ranges;
}

std::string IcuText::capitalise(std::string_view word) const {
  return utf8Of(unicodeOf(word).toTitle(nullptr, localeOf(locale_), U_TITLECASE_WHOLE_STRING));
}

std::string IcuText::lowercase(std::string_view text) const {
  return utf8Of(unicodeOf(text).toLower(icu::Locale::getRoot()));
}

std::string IcuText::uppercase(std::string_view text) const {
  return utf8Of(unicodeOf(text).toUpper(icu::Locale::getRoot()));
}

int IcuText::compareNumerically(std::string_view a, std::string_view b) const { return numericOrder(a, b); }

Result<std::shared_ptr<const RegularExpression>> IcuText::makeRegularExpression(
    const std::string& pattern) const {
  return IcuRegularExpression::make(pattern, false);
}

bool IcuText::isEqualCaseInsensitive(std::string_view a, std::string_view b) const {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t order =
      icu::Normalizer::compare(unicodeOf(a), unicodeOf(b), U_COMPARE_IGNORE_CASE, status);
  return U_SUCCESS(status) && order == 0;
}

bool IcuText::containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const {
  const auto expression = IcuRegularExpression::make(pattern, ignoreCase);
  return expression && expression.value()->firstMatch(text).has_value();
}

}  // namespace karno::platform
