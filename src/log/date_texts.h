#pragma once
#include <string>

#include "platform/date.h"

namespace karno {

// Date texts in the user's locale and local time zone. Safe from any thread.

// "yyyy-MM-dd HH:mm:ss:SSSZZZ", for log lines: 2024-03-05 14:07:09:042+0100. Everything but the milliseconds
// is formatted once a second on each thread, so a new time zone shows from the next second on.
std::string stringForLogDate(platform::Date date);

// The same at the end of `text`.
void appendLogDate(std::string& text, platform::Date date);

// "yyyyMMddHHmmssSSS": 20240305140709042
std::string timestampForDate(platform::Date date);

// "dd MMM yyyy HH:mm:ss": 05 Mar 2024 14:07:09
std::string formattedDateTime(platform::Date date);

}  // namespace karno
