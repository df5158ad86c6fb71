#pragma once
#include <string>

#include "platform/error.h"
#include "platform/value.h"

namespace karno::platform {

// Reads a property-list file whose root is a dictionary. ENOENT says that there is none; what is no property
// list or has another root is an error as well.
Result<Value::Dictionary> readDictionary(const std::string& path);

// Whether the error says that nothing lies at the path.
bool saysMissing(const Error& error);

}  // namespace karno::platform
