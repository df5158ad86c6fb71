#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "expected_logs.h"
#include "places.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::HasSubstr;

// A start takes a second or two; the choice of build that it settles is two values of the suite.
constexpr std::chrono::seconds kStartLimit(10);

fs::path settingsOf(const Machine& machine) {
  return machine.home() / "Library/Preferences/it.vantul.karno.plist";
}

std::string settingsTextOf(const Machine& machine) {
  std::ostringstream text;
  text << std::ifstream(settingsOf(machine), std::ios::binary).rdbuf();
  return text.str();
}

// The lock of the settings that launcher and client share.
platform::ScopedDescriptor lockSettings(const Machine& machine) {
  fs::create_directories(settingsOf(machine).parent_path());
  platform::ScopedDescriptor lock(
      ::open((settingsOf(machine).string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (::flock(lock.get(), LOCK_EX) != 0) throw std::system_error(errno, std::generic_category(), "flock");
  return lock;
}

TEST(LockedSettings, AreNoReasonToKeepTheClientFromStarting) {
  Machine machine(builtTools());
  platform::ScopedDescriptor lock = lockSettings(machine);

  machine.start();

  ASSERT_TRUE(machine.waitForMessage(kStarted, kStartLimit)) << machine.consoleText();
  EXPECT_THAT(machine.consoleText(),
              HasSubstr(settingsOf(machine).string() + " is locked by another process"));
  EXPECT_FALSE(fs::exists(settingsOf(machine)));
  lock.reset();
  EXPECT_TRUE(machine.waitUntil(
      [&] { return settingsTextOf(machine).find("useFileProviderVerified") != std::string::npos; },
      std::chrono::seconds(20)))
      << machine.consoleText();
  machine.in({"karnoctl", "post", "user-selected-quit"});
  EXPECT_EQ(machine.waitForEnd(), 0);
}

TEST(LockedSettings, AreNoReasonToStayForever) {
  Machine machine(builtTools());
  const platform::ScopedDescriptor lock = lockSettings(machine);

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.log(), Contains(kTerminating));
  EXPECT_THAT(machine.consoleText(), HasSubstr("not stored: useFileProvider, useFileProviderVerified"));
  EXPECT_FALSE(machine.hasProcesses());
}

}  // namespace
}  // namespace karno::test
