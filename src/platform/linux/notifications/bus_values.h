#pragma once
#include <sdbus-c++/Types.h>

#include <map>
#include <optional>
#include <string>

#include "platform/value.h"

namespace karno::platform {

// Containers within containers. D-Bus itself ends at 64 levels, and a dictionary in a dictionary takes three.
inline constexpr int kBusValueDepthMax = 16;

using BusDictionary = std::map<std::string, sdbus::Variant>;

// As a D-Bus variant: boolean b, integer x, floating-point d, string s, data ay, array av, dictionary a{sv},
// date (d) in seconds since 1970. Absent below kBusValueDepthMax and for texts that D-Bus does not take.
std::optional<BusDictionary> busDictionaryFromValues(const Value::Dictionary& values);

// The way back, which also takes the other integer types, object paths, and arrays and dictionaries of one
// type. What no Value can hold is left out: other types, too large numbers and moments, too deep containers.
Value::Dictionary valuesFromBusDictionary(const BusDictionary& values);

// Whether D-Bus carries the text unchanged: UTF-8 without a NUL.
bool isBusText(const std::string& text);

}  // namespace karno::platform
