#include <gtest/gtest.h>

#include "fake_platform.h"
#include "ipc/karno_process_utils.h"

namespace karno {
namespace {

using test::FakePlatform;

TEST(ProcessName, IsTheKernelsShortName) {
  FakePlatform machine;
  machine.processes.names[815] = "zsh";

  EXPECT_EQ(KarnoProcessUtils::stringForProcessNameForPid(815), "zsh");
}

TEST(ProcessName, IsUnknownWhenItCannotBeRead) {
  FakePlatform machine;

  EXPECT_EQ(KarnoProcessUtils::stringForProcessNameForPid(99999), "Unknown");
  EXPECT_EQ(KarnoProcessUtils::stringForProcessNameForPid(0), "Unknown");
  EXPECT_EQ(KarnoProcessUtils::stringForProcessNameForPid(-1), "Unknown");
}

}  // namespace
}  // namespace karno
