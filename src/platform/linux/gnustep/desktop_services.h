#pragma once

namespace karno::platform::cocoa {

// Keeps GNUstep's application object from starting daemons, registering the program with them and writing
// into the user's GNUstep folder. Before the application object is made, after the user defaults were last
// changed.
void keepDesktopServicesAway();

// From now on a shared workspace may be made.
void allowWorkspace();

}  // namespace karno::platform::cocoa
