#include <gmock/gmock.h>
#include <signal.h>

#include "platform/platform.h"

// The services of this Mac. No application object is made.
int main(int argc, char** argv) {
  // What a program begins with, whoever starts the tests.
  ::signal(SIGPIPE, SIG_DFL);
  ::signal(SIGXFSZ, SIG_DFL);
  karno::platform::install(karno::platform::nativePlatform(argc, argv));
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
