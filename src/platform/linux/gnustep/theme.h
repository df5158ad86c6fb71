#pragma once

namespace karno::platform::cocoa {

// Draws buttons, the ring of the focus and progress bars smoothly, in place of GNUstep's own drawing, whose
// rounded buttons have broken edges. Before the first window is made; further calls do nothing.
void installTheme();

}  // namespace karno::platform::cocoa
