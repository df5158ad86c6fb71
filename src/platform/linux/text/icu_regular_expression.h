#pragma once
#include <unicode/regex.h>

#include <memory>
#include <string>

#include "platform/text.h"

namespace karno::platform {

// A regular expression by ICU. The pattern is shared; each call makes a matcher of its own.
class IcuRegularExpression final : public RegularExpression {
 public:
  // The error is the one that Foundation has for a bad pattern, with ICU's reason in its user information.
  static Result<std::shared_ptr<const RegularExpression>> make(std::string_view pattern, bool ignoreCase);

  explicit IcuRegularExpression(std::unique_ptr<const icu::RegexPattern> pattern);

  // A search that takes longer than about a second finds nothing.
  std::optional<std::string> firstMatch(std::string_view text) const override;

  // A search that takes longer than about a second leaves the text unchanged.
  std::string stringByReplacingMatches(std::string_view text,
                                       std::string_view replacementTemplate) const override;

 private:
  std::unique_ptr<icu::RegexMatcher> matcherOf(const icu::UnicodeString& text, UErrorCode& status) const;

  const std::unique_ptr<const icu::RegexPattern> pattern_;
};

}  // namespace karno::platform
