#pragma once
#include <string>

#include "subprocess.h"

namespace karno::test {

// Runs a scenario of the scenario program with a display of its own.
inline CommandResult onScreen(const std::string& scenario) {
  return runCommand({KARNO_WITH_DISPLAY, KARNO_COCOA_SCENARIOS, scenario}, std::chrono::seconds(60));
}

// The same as the program of a bundle, in a language: with a locale such as "ko_KR.UTF-8".
inline CommandResult onScreen(const std::string& program, const std::string& locale,
                              const std::string& scenario) {
  return runCommand({"env", "-u", "LC_ALL", "-u", "LC_MESSAGES", "-u", "LANGUAGE", "LANG=" + locale,
                     KARNO_WITH_DISPLAY, program, scenario},
                    std::chrono::seconds(60));
}

}  // namespace karno::test
