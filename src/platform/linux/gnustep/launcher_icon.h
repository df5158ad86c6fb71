#pragma once

namespace karno::platform::cocoa {

// Gives the application and its windows the launcher's icon. The framework finds none in a bundle of a Mac's
// layout and shows its own. Before the application object is made; main thread.
void useLauncherIcon();

}  // namespace karno::platform::cocoa
