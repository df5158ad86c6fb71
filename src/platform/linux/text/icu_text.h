#pragma once
#include <optional>
#include <string>

#include "platform/text.h"

namespace karno::platform {

// Text rules by ICU. ICU is first touched by the first operation, since loading its data costs time.
class IcuText final : public Text {
 public:
  // Without an identifier the user's locale ("de_AT", from LC_ALL, LC_MESSAGES or LANG) and the machine's
  // time zone ("Europe/Vienna", followed while it changes) hold.
  explicit IcuText(std::optional<std::string> locale = std::nullopt,
                   std::optional<std::string> timeZone = std::nullopt);

  std::unique_ptr<DateFormatter> makeDateFormatter(const std::string& pattern) const override;
  std::vector<TextRange> wordRanges(std::string_view text) const override;
  std::string capitalise(std::string_view word) const override;
  std::string lowercase(std::string_view text) const override;
  std::string uppercase(std::string_view text) const override;
  int compareNumerically(std::string_view a, std::string_view b) const override;
  Result<std::shared_ptr<const RegularExpression>> makeRegularExpression(
      const std::string& pattern) const override;
  bool isEqualCaseInsensitive(std::string_view a, std::string_view b) const override;

  // A search that takes longer than about a second finds nothing.
  bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const override;

 private:
  const std::optional<std::string> locale_;
  const std::optional<std::string> timeZone_;
};

}  // namespace karno::platform
