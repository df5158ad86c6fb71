#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value.h"

// Single values of property lists, and their texts in the XML form.
namespace karno::platform::lists {

// Decimal or, after "0x", hexadecimal; a number that only fits 64 bits without sign becomes a double.
std::optional<Value> integerOfText(std::string_view text);

// "nan", "inf" and "infinity" with a sign count; the decimal sign is a point in every locale.
std::optional<double> realOfText(std::string_view text);
std::string textOfReal(double number);

// "2024-02-29T23:59:59Z". Moments beyond Date's range become the nearest one in it.
std::optional<Date> dateOfText(std::string_view text);
std::string textOfDate(Date date);

// The same of a moment in seconds since 1970-01-01T00:00:00Z, which must be a number.
std::optional<Date> dateSince1970(double seconds);

// Base 64; white space between its characters does not count.
std::optional<Value::Data> dataOfText(std::string_view text);
std::string textOfData(const Value::Data& data);

}  // namespace karno::platform::lists
