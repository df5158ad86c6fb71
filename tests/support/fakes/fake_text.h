#pragma once
#include <memory>
#include <string>

#include "platform/text.h"

namespace karno::test {

// The real text rules, with the user's locale and time zone as a test sets them. A formatter that exists
// already follows a change.
class FakeText final : public platform::Text {
 public:
  FakeText();
  ~FakeText() override;

  // Identifiers such as "de_DE" and "America/New_York".
  void setLocale(std::string locale);
  void setTimeZone(std::string timeZone);

  std::unique_ptr<platform::DateFormatter> makeDateFormatter(const std::string& pattern) const override;
  std::vector<platform::TextRange> wordRanges(std::string_view text) const override;
  std::string capitalise(std::string_view word) const override;
  std::string lowercase(std::string_view text) const override;
  std::string uppercase(std::string_view text) const override;
  int compareNumerically(std::string_view a, std::string_view b) const override;
  platform::Result<std::shared_ptr<const platform::RegularExpression>> makeRegularExpression(
      const std::string& pattern) const override;
  bool isEqualCaseInsensitive(std::string_view a, std::string_view b) const override;
  bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const override;

 private:
  class Formatter;
  struct Rules {
    std::unique_ptr<platform::Text> text;
    int generation = 0;
  };

  void makeRules();

  std::string locale_ = "en_US_POSIX";
  std::string timeZone_ = "Europe/Berlin";
  // Shared with the formatters, which outlive the machine in the launcher's singletons.
  std::shared_ptr<Rules> rules_ = std::make_shared<Rules>();
};

}  // namespace karno::test
