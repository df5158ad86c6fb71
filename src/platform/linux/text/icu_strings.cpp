#include "platform/linux/text/icu_strings.h"

#include <cstdint>

namespace karno::platform {

icu::UnicodeString unicodeOf(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string utf8Of(const icu::UnicodeString& text) {
  std::string result;
  return text.toUTF8String(result);
}

}  // namespace karno::platform
