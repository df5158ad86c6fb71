#include "platform/cocoa/windows/redrawing.h"

#include "platform/platform.h"

namespace karno::platform::cocoa {

// GNUstep (gui 0.29) makes room for a window's picture anew when it learns what the window manager did to it.
// What was drawn before is gone then, the window stays black, and nothing is told that could be observed.
void drawAgain(const std::function<void()>& draw) {
  host().dispatch.globalQueue(QueuePriority::Default).async([draw] {
    for (const double seconds : {0.25, 0.75, 2.0}) {
      host().dispatch.sleep(seconds);
      host().dispatch.mainEvents().async(draw);
    }
  });
}

}  // namespace karno::platform::cocoa
