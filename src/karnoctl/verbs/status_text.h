#pragma once
#include <string>
#include <vector>

#include "karnoctl/verbs/running_launchers.h"

namespace karno::karnoctl {

// How long something has lasted, in its two largest units, rounded down: "42 s", "3 min", "2 h 5 min",
// "12 d 4 h". Nothing is shorter than "0 s".
std::string durationText(double seconds);

// What "status" says about the launchers at that moment.
std::string statusText(const std::vector<RunningLauncher>& launchers, platform::Date now);

}  // namespace karno::karnoctl
