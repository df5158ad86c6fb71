#pragma once

namespace karno::platform::cocoa {

// Sends terminate: to the application object from its run loop, also from a modal one, when the process is
// asked to end by SIGTERM. Replaces the handler that the application object installs when it is made.
void terminateOnSignal();

}  // namespace karno::platform::cocoa
