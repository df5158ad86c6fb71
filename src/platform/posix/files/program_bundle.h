#pragma once
#include <optional>
#include <string>

namespace karno::platform {

// The bundle that a program lies in: X.app for X.app/Contents/MacOS/program. Absent for a program elsewhere.
// Goes by the path alone.
std::optional<std::string> bundleOfProgram(const std::string& programPath);

}  // namespace karno::platform
