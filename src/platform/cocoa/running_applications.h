#pragma once
#include <string>
#include <vector>

#include "platform/workspace.h"

namespace karno::platform::cocoa {

// The running applications from bundles with that identifier. AppKit knows them only on a Mac: GNUstep gui
// 0.29 has the messages and answers nil. On Linux they are the processes of this user and this machine root
// whose executable lies in X.app/Contents/MacOS; a child of Tasks counts until its termination handler has
// run. Any thread.
std::vector<RunningApplication> runningApplicationsWithIdentifier(const std::string& bundleIdentifier);

// The bundles of all running applications, found in the same ways. Any thread.
std::vector<std::string> bundlesOfRunningApplications();

}  // namespace karno::platform::cocoa
