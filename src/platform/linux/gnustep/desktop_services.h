#pragma once

namespace karno::platform::cocoa {

// Keeps GNUstep's application object from starting daemons, registering the program with them and writing
// into the user's GNUstep folder; a workspace is made only by sharedWorkspace(). Before the application
// object is made, after the user defaults were last changed.
void keepDesktopServicesAway();

}  // namespace karno::platform::cocoa
