#pragma once
#include <string>

#include "platform/error.h"
#include "platform/property_lists.h"

namespace karno::platform {

// Reads a property-list file whose root is a dictionary. ENOENT says that there is none; what is no property
// list or has another root is an error as well.
Result<Value::Dictionary> readDictionary(const PropertyLists& propertyLists, const std::string& path);

// The same for bytes that were read already.
Result<Value::Dictionary> parseDictionary(const PropertyLists& propertyLists, std::string_view bytes);

// Whether the error says that nothing lies at the path.
bool saysMissing(const Error& error);

}  // namespace karno::platform
