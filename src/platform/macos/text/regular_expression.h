#pragma once
#include "platform/cocoa/runtime/objc.h"
#include "platform/text.h"

namespace karno::platform {

// A regular expression by Foundation, whose expressions are immutable and safe from any thread. What it
// raises counts as no match and is written to the console log.
class FoundationRegularExpression final : public RegularExpression {
 public:
  static Result<std::shared_ptr<const RegularExpression>> make(std::string_view pattern, bool ignoreCase);

  explicit FoundationRegularExpression(objc::Object expression);

  std::optional<std::string> firstMatch(std::string_view text) const override;
  std::string stringByReplacingMatches(std::string_view text,
                                       std::string_view replacementTemplate) const override;

 private:
  const objc::Object expression_;
};

}  // namespace karno::platform
