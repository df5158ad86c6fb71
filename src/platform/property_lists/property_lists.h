#pragma once
#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/value.h"

// Property lists of at most lists::kPropertyListSizeBytesMax, for everything that runs on either system: so
// that the launcher, the installer and the release tool find the same in the same bytes. The reader is ours
// because others crash on shared and deeply nested lists, lose signs and dates, take damaged numbers for
// numbers, or accept unknown entities and whatever follows the list. Any thread; hostile input gives an
// error.
namespace karno::platform {

// Either form, which the bytes tell. Of a key that a dictionary has twice the last counts.
Result<Value> parsePropertyList(std::string_view bytes);

// The same for a list whose root has to be a dictionary; another root is EINVAL.
Result<Value::Dictionary> parseDictionary(std::string_view bytes);

// Dates are written in whole seconds. An error only for a value nested too deeply.
Result<std::string> propertyListXML(const Value& value);

// Reads a keyed archive of either form whose root is a dictionary of property-list values, and nothing of
// other classes. A plain property list is an error.
Result<Value::Dictionary> unarchiveDictionary(std::string_view bytes);

}  // namespace karno::platform
