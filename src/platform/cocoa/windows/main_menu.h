#pragma once
#include "platform/bundles.h"
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::cocoa {

// The menu bar of the launcher: its own menu, Edit and Window. Without it no key with Command does anything.
// The titles are the texts of the strings table "MainMenu". Main thread, once the application object exists;
// whoever gets it shows it.
objc::Object makeMainMenu(const Bundle& bundle);

}  // namespace karno::platform::cocoa
