#include <gtest/gtest.h>

#include <optional>

#include "ipc/wrapper_protocol.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

// What "post" complains of.
std::string complaintAbout(std::vector<std::string> words) {
  test::FakePlatform machine;
  test::Terminal terminal;
  words.insert(words.begin(), "post");
  EXPECT_EQ(terminal.run(words), 64);
  return terminal.err();
}

std::string complaint(const std::string& text) {
  return "karnoctl: " + text + "\nTry \"karnoctl help post\".\n";
}

TEST(KarnoctlPost, WantsAMessage) {
  EXPECT_EQ(complaintAbout({}), complaint("post what? (no message given)"));
  EXPECT_EQ(complaintAbout({"restart-wrapper", "user-selected-quit"}),
            complaint("one message at a time, not 'restart-wrapper' and 'user-selected-quit'"));
}

TEST(KarnoctlPost, SuggestsTheMessageThatWasMeant) {
  EXPECT_EQ(complaintAbout({"check-for-update"}),
            complaint("unknown message 'check-for-update'; did you mean 'check-for-updates'?"));
  EXPECT_EQ(complaintAbout({"CHECK-FOR-UPDATES"}), complaint("unknown message 'CHECK-FOR-UPDATES'"));
}

TEST(KarnoctlPost, RefusesAReasonWithoutAText) {
  EXPECT_EQ(complaintAbout({"restart-wrapper", "--reason"}), complaint("--reason needs a value"));
}

// A shell passes whatever it was given; the session's notification service does not.
TEST(KarnoctlPost, HasAReplacementInTheReasonForEachByteThatIsNotUTF8) {
  test::FakePlatform machine;
  test::Terminal terminal;
  std::optional<std::string> reason;
  machine.notifications.addObserver(
      &reason, std::string(kWrapperNotificationName), std::string(kWrapperNotificationObject),
      [&reason](const platform::DistributedNotification& posted) {
        reason = *posted.userInfo.at(std::string(kWrapperReasonKey)).get<std::string>();
      });

  const int status = terminal.run({"post", "app-is-terminating-abnormally", "--reason", "a\xFFz"});
  machine.runFor(1);

  EXPECT_EQ(status, 0);
  EXPECT_EQ(reason, "a\uFFFDz");
}

// It is posted all the same: a launcher whose bundle was taken away is not found, and hears it.
TEST(KarnoctlPost, SaysThatNoLauncherRuns) {
  test::FakePlatform machine;
  test::Terminal terminal;
  int heard = 0;
  machine.processTable.remove(test::FakeProcessTable::kLauncher);
  machine.notifications.addObserver(&heard, std::string(kWrapperNotificationName),
                                    std::string(kWrapperNotificationObject), [&](const auto&) { ++heard; });

  const int status = terminal.run({"post", "check-for-updates"});
  machine.runFor(1);

  EXPECT_EQ(status, 3);
  EXPECT_EQ(heard, 1);
  EXPECT_EQ(terminal.out(), "");
  EXPECT_EQ(terminal.err(), "karnoctl: no launcher runs, so nobody hears 'check-for-updates'\n");
}

}  // namespace
}  // namespace karno::karnoctl
