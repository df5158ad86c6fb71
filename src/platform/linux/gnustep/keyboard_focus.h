#pragma once

namespace karno::platform::cocoa {

// GNUstep (gui 0.29) loses the keyboard when a window goes and another one comes: in between the desktop
// hands the focus to somebody else, for which GNUstep deactivates the application, and when the X server then
// gives the focus to the new window as asked, GNUstep takes that for an answer that changes nothing. The
// window has the focus, but no key reaches it. From now on a deactivated application that turns out to have
// the focus is activated again. Before the application object is made.
void keepKeyboardFocus();

}  // namespace karno::platform::cocoa
