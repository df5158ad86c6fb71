#pragma once
#include "platform/text.h"

namespace karno::platform {

// Text rules by Foundation and CoreFoundation. What they raise gives the text unchanged, no words, no match,
// and is written to the console log.
class FoundationText final : public Text {
 public:
  std::unique_ptr<DateFormatter> makeDateFormatter(const std::string& pattern) const override;
  std::vector<TextRange> wordRanges(std::string_view text) const override;
  std::string capitalise(std::string_view word) const override;
  std::string lowercase(std::string_view text) const override;
  std::string uppercase(std::string_view text) const override;
  int compareNumerically(std::string_view a, std::string_view b) const override;
  Result<std::shared_ptr<const RegularExpression>> makeRegularExpression(
      const std::string& pattern) const override;
  bool isEqualCaseInsensitive(std::string_view a, std::string_view b) const override;
  bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const override;
};

}  // namespace karno::platform
