#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "expected_logs.h"
#include "ipc/wrapper_protocol.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

const std::string kName(kWrapperNotificationName);
const std::string kObject(kWrapperNotificationObject);

// A launcher that runs and has nothing to do.
class Notifications : public ::testing::Test {
 protected:
  void SetUp() override {
    machine.start();
    ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  }

  void post(std::vector<std::string> words) {
    words.insert(words.begin(), postNotification().string());
    const CommandResult posted = machine.in(words);
    ASSERT_EQ(posted.status, 0) << posted.output;
  }

  // What was logged between the start of the client and its wish to quit, which comes now.
  Messages messagesUntilQuit() {
    machine.in({"karnoctl", "post", "user-selected-quit"});
    EXPECT_EQ(machine.waitForEnd(), 0);
    Messages messages = machine.console();
    const auto start = std::find(messages.begin(), messages.end(), kStarted);
    const auto end = std::find(messages.begin(), messages.end(), quittingMessages().front());
    if (start == messages.end() || end == messages.end()) return messages;
    return {start + 1, end};
  }

  Machine machine{builtTools()};
};

TEST_F(Notifications, WithAnUnknownMessageAreLoggedAndIgnored) {
  post({kName, kObject, "1", "message=CHECK-FOR-UPDATES"});

  EXPECT_THAT(messagesUntilQuit(),
              ElementsAreArray({"INFO Notify[LISTEN] Received 'CHECK-FOR-UPDATES'",
                                "WARN Notify[LISTEN] Received an unknown notification 'CHECK-FOR-UPDATES'"}));
}

TEST_F(Notifications, WithoutAMessageAreLoggedAndIgnored) {
  post({kName, kObject, "1", "reason=no message"});

  EXPECT_THAT(messagesUntilQuit(),
              ElementsAreArray({"INFO Notify[LISTEN] Received '(null)'",
                                "WARN Notify[LISTEN] Received an unknown notification '(null)'"}));
}

TEST_F(Notifications, WithANumberForAMessageAreLoggedAndIgnored) {
  post({kName, kObject, "1", "message:=42"});

  EXPECT_THAT(messagesUntilQuit(),
              ElementsAreArray({"INFO Notify[LISTEN] Received '42'",
                                "WARN Notify[LISTEN] Received an unknown notification '42'"}));
}

TEST_F(Notifications, WithAnotherObjectAreNotHeard) {
  post({kName, "it.vantul.Other", "1", "message=user-selected-quit"});
  post({kName, "-", "1", "message=user-selected-quit"});

  EXPECT_THAT(messagesUntilQuit(), ElementsAreArray(Messages{}));
}

TEST_F(Notifications, WithAnotherNameAreNotHeard) {
  post({"it.vantul.Other", kObject, "1", "message=user-selected-quit"});

  EXPECT_THAT(messagesUntilQuit(), ElementsAreArray(Messages{}));
}

TEST_F(Notifications, OfABurstAreAllHandledInOrder) {
  constexpr int kCount = 10000;

  post({kName, kObject, std::to_string(kCount), "message=burst-%"});
  // The bus keeps the order of one sender only: the quit of another may overtake what it has not read yet.
  const bool lastWasHeard = machine.waitUntil(
      [&] {
        return machine.consoleText().find(fmt::format("notification 'burst-{:05}'", kCount)) !=
               std::string::npos;
      },
      std::chrono::seconds(60));

  // Without what the client's own libraries may print beside the launcher.
  Messages heard = messagesUntilQuit();
  std::erase_if(heard,
                [](const std::string& line) { return line.find("Notify[LISTEN]") == std::string::npos; });
  Messages expected;
  for (int number = 1; number <= kCount; ++number) {
    expected.push_back(fmt::format("INFO Notify[LISTEN] Received 'burst-{:05}'", number));
    expected.push_back(
        fmt::format("WARN Notify[LISTEN] Received an unknown notification 'burst-{:05}'", number));
  }
  const auto [ours, theirs] = std::ranges::mismatch(heard, expected);
  EXPECT_TRUE(lastWasHeard);
  EXPECT_EQ(heard.size(), expected.size());
  EXPECT_TRUE(ours == heard.end()) << "heard " << *ours << " as number " << ours - heard.begin();
  EXPECT_TRUE(theirs == expected.end()) << "missed " << *theirs;
}

TEST_F(Notifications, AreNotPostedByKarnoctlWithAnUnknownMessage) {
  const CommandResult posted = machine.in({"karnoctl", "post", "user-selected-quti"});

  EXPECT_EQ(posted.status, 64);
  EXPECT_THAT(posted.output,
              HasSubstr("unknown message 'user-selected-quti'; did you mean 'user-selected-quit'?"));
  EXPECT_THAT(messagesUntilQuit(), ElementsAreArray(Messages{}));
}

TEST_F(Notifications, FromAnotherMachineAreNotHeard) {
  Machine neighbour(builtTools());
  neighbour.start();
  ASSERT_TRUE(neighbour.waitForMessage(kStarted)) << neighbour.consoleText();

  const CommandResult posted = neighbour.in({"karnoctl", "post", "user-selected-quit"});

  EXPECT_EQ(posted.status, 0) << posted.output;
  EXPECT_EQ(neighbour.waitForEnd(), 0);
  EXPECT_THAT(messagesUntilQuit(), ElementsAreArray(Messages{}));
}

TEST(Karnoctl, FailsWithoutABus) {
  Machine machine(builtTools());

  const CommandResult posted =
      runCommand({"env", "-u", "DBUS_SESSION_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent",
                  machine.bundle() / "Contents/MacOS/karnoctl", "post", "user-selected-quit"},
                 std::chrono::seconds(30));

  EXPECT_EQ(posted.status, 1);
  EXPECT_THAT(posted.output,
              HasSubstr("karnoctl: cannot post 'user-selected-quit': the session's notification "
                        "service cannot be reached\n"));
}

}  // namespace
}  // namespace karno::test
