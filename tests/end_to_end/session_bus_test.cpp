#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "../platform/support/private_bus.h"
#include "expected_logs.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

constexpr std::chrono::seconds kBusLimit{60};
constexpr const char* kGone = "WARN Notifications: the session bus is gone. Reason: ";
constexpr const char* kNone =
    "WARN Notifications: no session bus, none will be received until there is one. Reason: ";
constexpr const char* kConnected =
    "INFO Notifications: connected to the session bus, they are received from now on";
constexpr const char* kEnabled = "INFO Notify[LISTEN] Received 'enable-automatic-updates'";

// What the bus library gives as a reason is its own.
Messages withoutReasons(Messages lines) {
  for (std::string& line : lines) {
    for (const std::string beginning : {kGone, kNone}) {
      if (line.starts_with(beginning)) line = beginning;
    }
  }
  return lines;
}

// A launcher on a session bus that can end and come back at its address.
class SessionBus : public ::testing::Test {
 protected:
  void startLauncher() {
    machine.start({"--env", "DBUS_SESSION_BUS_ADDRESS=" + bus.address()});
    ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  }

  // In the log file: a line may stand on the console already while another thread's overtakes it there.
  bool waitForLine(std::ptrdiff_t count, const std::string& line) const {
    return machine.waitUntil(
        [&] {
          const Messages lines = withoutReasons(machine.log());
          return std::count(lines.begin(), lines.end(), line) >= count;
        },
        kBusLimit);
  }

  CommandResult post(const std::string& message) const { return machine.in({"karnoctl", "post", message}); }

  // The log file's lines about the bus and about what was heard.
  Messages heard() const {
    Messages lines = withoutReasons(machine.log());
    std::erase_if(lines, [](const std::string& line) { return line.find("Notif") == std::string::npos; });
    return lines;
  }

  PrivateBus bus;
  Machine machine{builtTools()};
};

TEST_F(SessionBus, ThatComesBackIsHeardAgain) {
  startLauncher();
  Messages expected;

  for (int end = 1; end <= 3; ++end) {
    bus.stop();
    ASSERT_TRUE(waitForLine(end, kGone)) << machine.consoleText();
    bus.start();
    ASSERT_TRUE(waitForLine(end, kConnected)) << machine.consoleText();
    ASSERT_EQ(post("enable-automatic-updates").status, 0);
    ASSERT_TRUE(waitForLine(end, kEnabled)) << machine.consoleText();
    expected.insert(expected.end(), {kGone, kConnected, kEnabled});
  }
  const CommandResult quit = post("user-selected-quit");

  EXPECT_EQ(quit.status, 0) << quit.output;
  EXPECT_EQ(machine.waitForEnd(), 0);
  expected.emplace_back("INFO Notify[LISTEN] Received 'user-selected-quit'");
  EXPECT_EQ(heard(), expected);
}

TEST_F(SessionBus, ThatComesAfterTheLauncherIsHeard) {
  bus.stop();
  startLauncher();

  bus.start();
  ASSERT_TRUE(waitForLine(1, kConnected)) << machine.consoleText();
  const CommandResult quit = post("user-selected-quit");

  EXPECT_EQ(quit.status, 0) << quit.output;
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_EQ(heard(), (Messages{kNone, kConnected, "INFO Notify[LISTEN] Received 'user-selected-quit'"}));
}

TEST_F(SessionBus, ThatIsGoneMakesAPostFail) {
  startLauncher();
  bus.stop();
  ASSERT_TRUE(waitForLine(1, kGone)) << machine.consoleText();

  const CommandResult posted = post("user-selected-quit");
  machine.signalStart(SIGTERM);

  EXPECT_EQ(posted.status, 1);
  EXPECT_THAT(posted.output,
              HasSubstr("karnoctl: cannot post 'user-selected-quit': the session's notification "
                        "service cannot be reached\n"));
  EXPECT_EQ(machine.waitForEnd(), 128 + SIGTERM);
}

TEST_F(SessionBus, ThatIsGoneHoldsUpNoEnd) {
  startLauncher();
  bus.stop();
  ASSERT_TRUE(waitForLine(1, kGone)) << machine.consoleText();
  const auto launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
  ASSERT_THAT(launchers, SizeIs(1));

  ::kill(launchers[0], SIGTERM);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_EQ(machine.log().back(), kTerminating);
  EXPECT_FALSE(machine.hasProcesses());
}

}  // namespace
}  // namespace karno::test
