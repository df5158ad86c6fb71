#pragma once
#include <stdexcept>
#include <string_view>

#include "platform/error.h"

namespace karno::platform::lists {

// What stands in the way of reading or writing, thrown inside this folder alone.
struct Damage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// NSPropertyListReadCorruptError with a text that says why.
Error unreadablePropertyList(std::string_view reason);

// NSPropertyListWriteInvalidError with a text that says why.
Error unwritablePropertyList(std::string_view reason);

// NSCoderReadCorruptError with a text that says why.
Error unreadableArchive(std::string_view reason);

}  // namespace karno::platform::lists
