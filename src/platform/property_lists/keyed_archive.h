#pragma once
#include "platform/error.h"
#include "platform/value.h"

namespace karno::platform::lists {

// Unfolds a keyed archive, given as the property list that it is, into the dictionary at its root. Only
// dictionaries, arrays, strings, numbers, data and dates are taken out of it, whatever other classes it
// names.
Result<Value::Dictionary> unfoldKeyedArchive(const Value& archive);

}  // namespace karno::platform::lists
