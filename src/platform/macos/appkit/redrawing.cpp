#include "platform/cocoa/windows/redrawing.h"

namespace karno::platform::cocoa {

void drawAgain(const std::function<void()>& /*draw*/) {}

}  // namespace karno::platform::cocoa
