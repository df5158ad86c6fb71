#pragma once
#include <functional>

#include "platform/cocoa/runtime/objc.h"

// What the application object needs done differently on the two systems. Main thread only.
namespace karno::platform::cocoa {

// Before the application object is made: the usual look of windows where the framework's own differs, and no
// desktop services that the launcher has no use for.
void prepareForApplication();

// Right after it was made: the signal that asks the process to end leads to terminate:.
void prepareApplication();

// Runs the application object; ends with exit(), so what it returns is the status of a failed start.
int runApplication(int argc, char** argv);

// The application's icon, NSImage. Read when first asked for: most starts show no window.
objc::Id applicationIcon();

// Runs `draw` again a few times in the seconds to come where a window may lose what was drawn while it
// appears: on Linux, when the window manager is slow.
void drawAgain(const std::function<void()>& draw);

// The shared NSWorkspace, made when first asked for.
objc::Id sharedWorkspace();

}  // namespace karno::platform::cocoa
