#pragma once
#include <optional>

#include "platform/cocoa/runtime/objc.h"
#include "platform/value.h"

// Property-list objects as platform::Value and back. Any thread, inside an autorelease pool.
namespace karno::platform::cocoa {

// Absent when the object, or anything in it, is not a property-list object, a dictionary has a key that is no
// string, or it is nested deeper than lists::kMaxValueDepth. A number beyond std::int64_t becomes a double; a
// date beyond Date's range the nearest one in it.
std::optional<Value> valueOf(objc::Id object);

// Null only for a value that is nested too deeply.
objc::Object objectOf(const Value& value);

}  // namespace karno::platform::cocoa
