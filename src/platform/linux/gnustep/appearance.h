#pragma once

namespace karno::platform::cocoa {

// Registers colours, fonts and the absence of an application tile as GNUstep user defaults, in memory only:
// the user's own GNUstep settings still win. Before the application object is made.
void registerAppearance();

}  // namespace karno::platform::cocoa
