#include <gmock/gmock.h>
#include <signal.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "support/message_check.h"

namespace {

// Tells CTest of a test that could not run on this machine.
constexpr int kHasSkipped = 77;

// The messages without a row in the table that have been sent since the last look.
class MessagesWithoutRow {
 public:
  void add(const std::string& message) {
    const std::lock_guard lock(mutex_);
    messages_.push_back(message);
  }

  std::vector<std::string> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(messages_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> messages_;
};

MessagesWithoutRow& messagesWithoutRow() {
  static karno::platform::NeverDestroyed<MessagesWithoutRow> messages;
  return *messages;
}

// Fails the test that has sent such a message.
class TableListener final : public testing::EmptyTestEventListener {
 public:
  void OnTestEnd(const testing::TestInfo&) override {
    for (const std::string& message : messagesWithoutRow().take()) {
      ADD_FAILURE() << "selectors.h has no row for " << message;
    }
  }
};

}  // namespace

// The real services of this system. No application object is made.
int main(int argc, char** argv) {
  // What a program begins with, whoever starts the tests.
  ::signal(SIGPIPE, SIG_DFL);
  ::signal(SIGXFSZ, SIG_DFL);
  karno::platform::trial::watchMessages(
      [](const std::string& message) { messagesWithoutRow().add(message); });
  karno::platform::install(karno::platform::nativePlatform(argc, argv));
  testing::InitGoogleMock(&argc, argv);
  // The list owns it.
  testing::UnitTest::GetInstance()->listeners().Append(std::make_unique<TableListener>().release());
  const int result = RUN_ALL_TESTS();
  const bool hasSkipped = testing::UnitTest::GetInstance()->skipped_test_count() > 0;
  return result == 0 && hasSkipped ? kHasSkipped : result;
}
