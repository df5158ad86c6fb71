#include "platform/macos/machine/console_log.h"

#include "platform/cocoa/runtime/strings.h"

extern "C" void NSLog(objc_object* format, ...);

namespace karno::platform {

void writeConsoleLine(std::string_view line) {
  try {
    const objc::AutoreleasePool pool;
    // The line is an argument and not the format: it may hold percent signs.
    NSLog(objc::string("%@").get(), objc::string(line).get());
  } catch (...) {
    // The console log is where failures are reported; its own have nowhere to go.
  }
}

}  // namespace karno::platform
