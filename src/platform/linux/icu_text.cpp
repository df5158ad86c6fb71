#include "platform/linux/icu_text.h"

#include <unicode/brkiter.h>
#include <unicode/casemap.h>
#include <unicode/normlzr.h>
#include <unicode/regex.h>
#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <utility>

#include "platform/linux/icu_date_formatter.h"

namespace karno::platform {
namespace {

constexpr std::int32_t kSearchStepsMax = 1000;  // ICU counts in steps of about a millisecond

struct CloseText {
  void operator()(UText* text) const { ::utext_close(text); }
};

icu::Locale localeOf(const std::optional<std::string>& identifier) {
  return identifier ? icu::Locale(identifier->c_str()) : icu::Locale::getDefault();
}

// Each wrong byte sequence becomes U+FFFD.
icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  return text.toUTF8String(result);
}

}  // namespace

IcuText::IcuText(std::optional<std::string> locale, std::optional<std::string> timeZone)
    : locale_(std::move(locale)), timeZone_(std::move(timeZone)) {}

std::unique_ptr<DateFormatter> IcuText::makeDateFormatter(const std::string& pattern) const {
  return std::make_unique<IcuDateFormatter>(pattern, localeOf(locale_), timeZone_);
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
  return utf8(unicode(word).toTitle(nullptr, localeOf(locale_), U_TITLECASE_WHOLE_STRING));
}

std::string IcuText::lowercase(std::string_view text) const {
  return utf8(unicode(text).toLower(icu::Locale::getRoot()));
}

bool IcuText::isEqualCaseInsensitive(std::string_view a, std::string_view b) const {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t order = icu::Normalizer::compare(unicode(a), unicode(b), U_COMPARE_IGNORE_CASE, status);
  return U_SUCCESS(status) && order == 0;
}

bool IcuText::containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = unicode(text);  // the matcher refers to it
  icu::RegexMatcher matcher(unicode(pattern), ignoreCase ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0U,
                            status);
  if (U_FAILURE(status)) return false;
  matcher.reset(input);
  matcher.setTimeLimit(kSearchStepsMax, status);
  return matcher.find(status) != 0 && U_SUCCESS(status);
}

}  // namespace karno::platform
