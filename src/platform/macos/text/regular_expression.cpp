#include "platform/macos/text/regular_expression.h"

#include <fmt/format.h>

#include <utility>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/foundation/guarded_answer.h"

namespace karno::platform {
namespace {

constexpr objc::UInteger kNoOptions = 0;
constexpr objc::UInteger kCaseInsensitive = 1;   // NSRegularExpressionCaseInsensitive
constexpr std::int64_t kFormattingError = 2048;  // NSFormattingError

// GNUstep gives no error object, so the text is Foundation's own where there is one.
Error patternError(std::string_view pattern, objc::Id error) {
  std::string description = objc::text(objc::send(error, "localizedDescription"));
  if (description.empty()) description = fmt::format("The value “{}” is invalid.", pattern);
  return Error(std::string(kCocoaErrorDomain), kFormattingError,
               {{std::string(kLocalizedDescriptionKey), std::move(description)}});
}

objc::Range wholeOf(const objc::Object& string) { return {0, objc::send<objc::UInteger>(string, "length")}; }

}  // namespace

Result<std::shared_ptr<const RegularExpression>> FoundationRegularExpression::make(std::string_view pattern,
                                                                                   bool ignoreCase) {
  using Made = std::shared_ptr<const RegularExpression>;
  const objc::AutoreleasePool pool;
  auto made = objc::guarded("compiling an expression", [pattern, ignoreCase]() -> Result<Made> {
    objc::Id error = nullptr;
    const objc::Id expression =
        objc::send(objc::classNamed("NSRegularExpression"),
                   "regularExpressionWithPattern:options:error:", objc::string(pattern),
                   ignoreCase ? kCaseInsensitive : kNoOptions, &error);
    if (expression == nullptr) return patternError(pattern, error);
    return Made(std::make_shared<FoundationRegularExpression>(objc::Object::retaining(expression)));
  });
  return made ? std::move(made.value()) : made.error();
}

FoundationRegularExpression::FoundationRegularExpression(objc::Object expression)
    : expression_(std::move(expression)) {}

std::optional<std::string> FoundationRegularExpression::firstMatch(std::string_view text) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer(
      "searching a text", std::optional<std::string>(), [this, text]() -> std::optional<std::string> {
        const objc::Object subject = objc::string(text);
        const objc::Id result = objc::send(expression_, "firstMatchInString:options:range:", subject,
                                           kNoOptions, wholeOf(subject));
        if (result == nullptr) return std::nullopt;
        const auto range = objc::send<objc::Range>(result, "range");
        return objc::text(objc::send(subject, "substringWithRange:", range));
      });
}

std::string FoundationRegularExpression::stringByReplacingMatches(
    std::string_view text, std::string_view replacementTemplate) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer("replacing in a text", std::string(text), [this, text, replacementTemplate] {
    const objc::Object subject = objc::string(text);
    const objc::Id replaced =
        objc::send(expression_, "stringByReplacingMatchesInString:options:range:withTemplate:", subject,
                   kNoOptions, wholeOf(subject), objc::string(replacementTemplate));
    return replaced == nullptr ? std::string(text) : objc::text(replaced);
  });
}

}  // namespace karno::platform
