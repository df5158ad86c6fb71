#include <gmock/gmock.h>

#include "platform/platform.h"

// The real services of this system. No application object is made.
int main(int argc, char** argv) {
  karno::platform::install(karno::platform::nativePlatform(argc, argv));
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
