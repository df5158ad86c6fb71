#pragma once
#include <string>
#include <vector>

#include "platform/workspace.h"

namespace karno::platform {

// What NSRunningApplication tells. Its list changes while the main thread's run loop turns. Empty, with a
// line on the console log, when the platform raises an exception.
std::vector<RunningApplication> runningApplicationsOfAppKit(const std::string& bundleIdentifier);

// The bundles of all running applications that NSWorkspace lists. The same applies to it.
std::vector<std::string> bundlesOfRunningApplicationsOfAppKit();

}  // namespace karno::platform
