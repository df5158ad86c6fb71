#include "platform/linux/text/icu_regular_expression.h"

#include <fmt/format.h>

#include <cstdint>
#include <utility>

#include "platform/linux/text/icu_strings.h"

namespace karno::platform {
namespace {

constexpr std::int32_t kSearchStepsMax = 1000;   // ICU counts in steps of about a millisecond
constexpr std::int64_t kFormattingError = 2048;  // NSFormattingError, what Foundation has for a bad pattern

Error patternError(std::string_view pattern, const UParseError& place, UErrorCode status) {
  return Error(std::string(kCocoaErrorDomain), kFormattingError,
               {{std::string(kLocalizedDescriptionKey), fmt::format("The value “{}” is invalid.", pattern)},
                {"NSDebugDescription", fmt::format("{} in line {}, after {} characters",
                                                   ::u_errorName(status), place.line, place.offset)},
                {"NSInvalidValue", std::string(pattern)}});
}

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// How many digits a group's number may have in a template: as many as the highest group's. So "$12" is the
// first group and a "2" in an expression of fewer than ten groups.
int digitsOfGroupMax(std::int32_t groupCount) {
  int digits = 1;
  for (std::int32_t rest = groupCount / 10; rest > 0; rest /= 10) ++digits;
  return digits;
}

// Takes the digits of a group's number at `at`, which is a digit.
std::int32_t takeGroup(const icu::UnicodeString& replacement, std::int32_t& at, int digitsMax) {
  std::int32_t group = 0;
  for (int digits = 0; digits < digitsMax && at < replacement.length() && isDigit(replacement[at]);
       ++digits) {
    group = group * 10 + (replacement[at] - u'0');
    ++at;
  }
  return group;
}

// ICU's own replacement fails on a group that does not exist and on a "$" before anything but a digit.
void appendReplacement(icu::UnicodeString& result, const icu::UnicodeString& replacement,
                       const icu::RegexMatcher& match, UErrorCode& status) {
  const std::int32_t groupCount = match.groupCount();
  const int digitsMax = digitsOfGroupMax(groupCount);
  for (std::int32_t at = 0; at < replacement.length();) {
    const char16_t unit = replacement[at++];
    if (unit == u'\\') {
      if (at < replacement.length()) result.append(replacement[at++]);
    } else if (unit == u'$' && at < replacement.length() && isDigit(replacement[at])) {
      const std::int32_t group = takeGroup(replacement, at, digitsMax);
      if (group <= groupCount) result.append(match.group(group, status));
    } else {
      result.append(unit);
    }
  }
}

}  // namespace

Result<std::shared_ptr<const RegularExpression>> IcuRegularExpression::make(std::string_view pattern,
                                                                            bool ignoreCase) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError place = {};
  std::unique_ptr<const icu::RegexPattern> compiled(icu::RegexPattern::compile(
      unicodeOf(pattern), ignoreCase ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0U, place, status));
  if (U_FAILURE(status) || compiled == nullptr) return patternError(pattern, place, status);
  return std::shared_ptr<const RegularExpression>(
      std::make_shared<IcuRegularExpression>(std::move(compiled)));
}

IcuRegularExpression::IcuRegularExpression(std::unique_ptr<const icu::RegexPattern> pattern)
    : pattern_(std::move(pattern)) {}

std::unique_ptr<icu::RegexMatcher> IcuRegularExpression::matcherOf(const icu::UnicodeString& text,
                                                                   UErrorCode& status) const {
  std::unique_ptr<icu::RegexMatcher> matcher(pattern_->matcher(text, status));
  if (U_SUCCESS(status)) matcher->setTimeLimit(kSearchStepsMax, status);
  return matcher;
}

std::optional<std::string> IcuRegularExpression::firstMatch(std::string_view text) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = unicodeOf(text);  // the matcher refers to it
  const std::unique_ptr<icu::RegexMatcher> matcher = matcherOf(input, status);
  if (U_FAILURE(status) || matcher->find(status) == 0 || U_FAILURE(status)) return std::nullopt;
  return utf8Of(matcher->group(status));
}

std::string IcuRegularExpression::stringByReplacingMatches(std::string_view text,
                                                           std::string_view replacementTemplate) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = unicodeOf(text);  // the matcher refers to it
  const icu::UnicodeString replacement = unicodeOf(replacementTemplate);
  const std::unique_ptr<icu::RegexMatcher> matcher = matcherOf(input, status);

  icu::UnicodeString result;
  std::int32_t copied = 0;
  while (U_SUCCESS(status) && matcher->find(status) != 0) {
    const std::int32_t begin = matcher->start(status);
    result.append(input, copied, begin - copied);
    appendReplacement(result, replacement, *matcher, status);
    copied = matcher->end(status);
  }
  if (U_FAILURE(status)) return utf8Of(input);
  result.append(input, copied, input.length() - copied);
  return utf8Of(result);
}

}  // namespace karno::platform
