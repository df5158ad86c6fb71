#include "platform/cocoa/application_setup.h"

extern "C" int NSApplicationMain(int argc, const char** argv);

namespace karno::platform::cocoa {

void prepareForApplication() {}

void prepareApplication() {}

int runApplication(int argc, char** argv) { return NSApplicationMain(argc, const_cast<const char**>(argv)); }

}  // namespace karno::platform::cocoa
