#pragma once
#include <string>
#include <vector>

#include "karnoctl/verbs/running_launchers.h"

namespace karno::karnoctl {

// What "status" says about the launchers at that moment.
std::string statusText(const std::vector<RunningLauncher>& launchers, platform::Date now);

}  // namespace karno::karnoctl
