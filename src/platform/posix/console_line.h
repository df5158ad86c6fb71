#pragma once
#include <string_view>

namespace karno::platform {

// Writes one line to the platform's console log, for services that have something to report themselves. Never
// fails and never throws; any thread.
void writeConsoleLine(std::string_view line);

}  // namespace karno::platform
