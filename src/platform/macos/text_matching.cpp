#include "platform/macos/text_matching.h"

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"
#include "platform/macos/regular_expression.h"

namespace karno::platform::foundation {

bool isEqualCaseInsensitive(std::string_view a, std::string_view b) {
  const objc::AutoreleasePool pool;
  const auto order = objc::guarded("comparing texts", [a, b] {
    return objc::send<objc::Integer>(objc::string(a), "caseInsensitiveCompare:", objc::string(b));
  });
  return order && order.value() == 0;
}

bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) {
  const auto expression = FoundationRegularExpression::make(pattern, ignoreCase);
  return expression && expression.value()->firstMatch(text).has_value();
}

}  // namespace karno::platform::foundation
