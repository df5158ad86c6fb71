#pragma once
#include <optional>
#include <string_view>

#include "platform/date.h"

namespace karno::karnoctl {

// The moment of a date as the log writes it in a locale with Western digits and calendar; absent for
// any other, and for a year of which there can be no log.
std::optional<platform::Date> momentOfLogDate(std::string_view date);

}  // namespace karno::karnoctl
