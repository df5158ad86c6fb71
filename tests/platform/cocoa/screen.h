#pragma once
#include <string>

#include "subprocess.h"

namespace karno::test {

// Runs a scenario of the scenario program with a display of its own.
inline CommandResult onScreen(const std::string& scenario) {
  return runCommand({KARNO_WITH_DISPLAY, KARNO_COCOA_SCENARIOS, scenario}, std::chrono::seconds(60));
}

}  // namespace karno::test
