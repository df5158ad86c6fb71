#include "platform/macos/text_matching.h"

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"

namespace karno::platform::foundation {
namespace {

constexpr objc::UInteger kIgnoreCase = 1;  // NSRegularExpressionCaseInsensitive
constexpr objc::UInteger kNoOptions = 0;

bool findMatch(std::string_view pattern, std::string_view text, objc::UInteger options) {
  // A bad pattern gives nil, and a message to nil a nil result.
  const objc::Id expression =
      objc::send(objc::classNamed("NSRegularExpression"),
                 "regularExpressionWithPattern:options:error:", objc::string(pattern), options, nullptr);
  const objc::Object subject = objc::string(text);
  const objc::Range whole = {0, objc::send<objc::UInteger>(subject, "length")};
  return objc::send(expression, "firstMatchInString:options:range:", subject, kNoOptions, whole) != nullptr;
}

}  // namespace

bool isEqualCaseInsensitive(std::string_view a, std::string_view b) {
  const objc::AutoreleasePool pool;
  const auto order = objc::guarded("comparing texts", [a, b] {
    return objc::send<objc::Integer>(objc::string(a), "caseInsensitiveCompare:", objc::string(b));
  });
  return order && order.value() == 0;
}

bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) {
  const objc::AutoreleasePool pool;
  const auto found = objc::guarded("searching a text", [pattern, text, ignoreCase] {
    return findMatch(pattern, text, ignoreCase ? kIgnoreCase : kNoOptions);
  });
  return found && found.value();
}

}  // namespace karno::platform::foundation
