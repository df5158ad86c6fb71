#pragma once
#include <string_view>

namespace karno::platform {

// Whether the bytes are well-formed UTF-8 (no surrogates, no overlong forms).
bool isUTF8(std::string_view bytes);

}  // namespace karno::platform
