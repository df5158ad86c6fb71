#pragma once
#include <unicode/unistr.h>

#include <string>
#include <string_view>

namespace karno::platform {

// Each wrong byte sequence becomes U+FFFD. `text` is shorter than 2 GB.
icu::UnicodeString unicodeOf(std::string_view text);

std::string utf8Of(const icu::UnicodeString& text);

}  // namespace karno::platform
