#pragma once
#include <functional>

namespace karno::platform::cocoa {

// Runs `draw` again on the main thread, a few times in the seconds to come, where a window may lose what was
// drawn while it appears: on Linux, when the window manager is slow.
void drawAgain(const std::function<void()>& draw);

}  // namespace karno::platform::cocoa
