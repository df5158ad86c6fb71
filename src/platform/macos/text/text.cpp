#include "platform/macos/text/text.h"

#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/foundation/core_foundation.h"
#include "platform/macos/foundation/guarded_answer.h"
#include "platform/macos/text/date_formatter.h"
#include "platform/macos/text/regular_expression.h"
#include "platform/macos/text/text_matching.h"
#include "platform/macos/text/utf16_positions.h"
#include "platform/numeric_order.h"

namespace karno::platform {
namespace {

constexpr unsigned long kTokenizerUnitWord = 0;

std::vector<TextRange> tokenize(std::string_view text) {
  const objc::Object string = objc::string(text);
  const Utf16Positions positions(text, objc::text(string.get()));
  const CFRange whole = {0, static_cast<CFIndex>(positions.unitCount())};
  const CFOwned locale(CFLocaleCopyCurrent());
  const CFOwned tokenizer(
      CFStringTokenizerCreate(nullptr, string.get(), whole, kTokenizerUnitWord, locale.get()));
  std::vector<TextRange> words;
  while (tokenizer && CFStringTokenizerAdvanceToNextToken(tokenizer.get()) != 0) {
    const CFRange word = CFStringTokenizerGetCurrentTokenRange(tokenizer.get());
    if (word.location < 0 || word.length < 0) break;
    words.push_back(
        positions.bytes(static_cast<std::size_t>(word.location), static_cast<std::size_t>(word.length)));
  }
  return words;
}

// A copy of the text after `change`, one of CoreFoundation's functions for mutable strings.
std::string changed(std::string_view text, void (*change)(CFTypeRef, CFTypeRef), CFTypeRef locale) {
  const CFOwned copy(CFStringCreateMutableCopy(nullptr, 0, objc::string(text).get()));
  if (!copy) return std::string(text);
  change(copy.get(), locale);
  return objc::text(copy.object());
}

constexpr std::string_view kChangingCase = "changing case";

}  // namespace

std::unique_ptr<DateFormatter> FoundationText::makeDateFormatter(const std::string& pattern) const {
  return std::make_unique<FoundationDateFormatter>(pattern);
}

std::vector<TextRange> FoundationText::wordRanges(std::string_view text) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer("finding words", std::vector<TextRange>(), [text] { return tokenize(text); });
}

std::string FoundationText::capitalise(std::string_view word) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer(kChangingCase, std::string(word), [word] {
    const CFOwned locale(CFLocaleCopyCurrent());
    return changed(word, CFStringCapitalize, locale.get());
  });
}

std::string FoundationText::lowercase(std::string_view text) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer(kChangingCase, std::string(text),
                       [text] { return changed(text, CFStringLowercase, nullptr); });
}

std::string FoundationText::uppercase(std::string_view text) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer(kChangingCase, std::string(text),
                       [text] { return changed(text, CFStringUppercase, nullptr); });
}

int FoundationText::compareNumerically(std::string_view a, std::string_view b) const {
  return numericOrder(a, b);
}

Result<std::shared_ptr<const RegularExpression>> FoundationText::makeRegularExpression(
    const std::string& pattern) const {
  return FoundationRegularExpression::make(pattern, false);
}

bool FoundationText::isEqualCaseInsensitive(std::string_view a, std::string_view b) const {
  return foundation::isEqualCaseInsensitive(a, b);
}

bool FoundationText::containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const {
  return foundation::containsMatch(pattern, text, ignoreCase);
}

}  // namespace karno::platform
