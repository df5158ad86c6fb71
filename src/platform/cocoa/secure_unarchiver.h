#pragma once
#include <string_view>

#include "platform/error.h"
#include "platform/value.h"

namespace karno::platform::cocoa {

// Whether NSKeyedUnarchiver can be told which classes to expect: macOS 10.13 and later.
bool hasSecureUnarchiver();

// Lets it read an archive whose root is a dictionary of property-list objects.
Result<Value::Dictionary> unarchiveSecurely(std::string_view bytes);

}  // namespace karno::platform::cocoa
