#include "platform/macos/text/text_matching.h"

#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/foundation/guarded_answer.h"
#include "platform/macos/text/regular_expression.h"

namespace karno::platform::foundation {

bool isEqualCaseInsensitive(std::string_view a, std::string_view b) {
  const objc::AutoreleasePool pool;
  return guardedAnswer("comparing texts", false, [a, b] {
    return objc::send<objc::Integer>(objc::string(a), "caseInsensitiveCompare:", objc::string(b)) == 0;
  });
}

bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) {
  const auto expression = FoundationRegularExpression::make(pattern, ignoreCase);
  return expression && expression.value()->firstMatch(text).has_value();
}

}  // namespace karno::platform::foundation
