#pragma once
#include "platform/error.h"
#include "platform/value.h"

namespace karno::platform::cocoa {

// Unfolds a keyed archive, given as the property list that it is, into the dictionary at its root. Only
// dictionaries, arrays, strings, numbers, data and dates are taken out of it, whatever other classes it
// names. For systems whose NSKeyedUnarchiver cannot be told which classes to expect.
Result<Value::Dictionary> unfoldKeyedArchive(const Value& archive);

}  // namespace karno::platform::cocoa
