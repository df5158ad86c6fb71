#pragma once
#include <string_view>

#include "platform/error.h"

namespace karno::platform::cocoa {

// NSPropertyListReadCorruptError with a text that says why.
Error unreadablePropertyList(std::string_view reason);

// NSPropertyListWriteInvalidError with a text that says why.
Error unwritablePropertyList(std::string_view reason);

// NSCoderReadCorruptError with a text that says why.
Error unreadableArchive(std::string_view reason);

}  // namespace karno::platform::cocoa
