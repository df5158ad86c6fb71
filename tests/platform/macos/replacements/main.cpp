#include <gmock/gmock.h>
#include <unistd.h>

#include "platform/cocoa/runtime/objc.h"
#include "platform/platform.h"

// The services of this system, but for what is built for a Mac here. GNUstep's start belongs to the part that
// is replaced.
int main(int argc, char** argv) {
  using namespace karno::platform;
  {
    const objc::AutoreleasePool pool;
    objc::send<void>(objc::classNamed("NSProcessInfo"), "initializeWithArguments:count:environment:", argv,
                     objc::CInt{1}, environ);
  }
  install(nativePlatform(argc, argv));
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
