#pragma once

// What the application object needs done differently on the two systems. Main thread only.
namespace karno::platform::cocoa {

// Before the application object is made: the usual look of windows where the framework's own differs, and no
// desktop services that the launcher has no use for.
void prepareForApplication();

// Right after it was made: gives it its menus where they have a place on the screen.
void prepareApplication();

// Runs the application object; ends with exit(), so what it returns is the status of a failed start.
int runApplication(int argc, char** argv);

}  // namespace karno::platform::cocoa
