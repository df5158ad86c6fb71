#include <gtest/gtest.h>

#include <optional>

#include "ipc/wrapper_protocol.h"
#include "log/date_texts.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using test::FakePlatform;
using test::FakeProcessTable;
using test::Terminal;

// A machine whose launcher takes its time to quit once it is told to, and somebody who tells it.
class Quitting : public testing::Test {
 protected:
  void launcherQuitsWithin(double seconds) {
    machine_.notifications.addObserver(
        this, std::string(kWrapperNotificationName), std::string(kWrapperNotificationObject),
        [this, seconds](const platform::DistributedNotification& posted) {
          message_ = *posted.userInfo.at(std::string(kWrapperMessageKey)).get<std::string>();
          machine_.onThread([this, seconds] {
            machine_.dispatch.sleep(seconds);
            machine_.processTable.remove(FakeProcessTable::kLauncher);
          });
        });
  }

  // The exit status, when it has come to one by then.
  std::optional<int> typeAndWait(const std::vector<std::string>& words, double seconds) {
    machine_.onThread([this, words] { status_ = terminal_.run(words); }, "karnoctl");
    machine_.runFor(seconds);
    return status_;
  }

  std::optional<int> afterAnother(double seconds) {
    machine_.runFor(seconds);
    return status_;
  }

  FakePlatform machine_;
  Terminal terminal_;
  std::string message_;

 private:
  std::optional<int> status_;
};

TEST_F(Quitting, WaitsUntilTheLauncherHasEnded) {
  launcherQuitsWithin(12);

  EXPECT_EQ(typeAndWait({"quit"}, 11), std::nullopt);
  EXPECT_EQ(afterAnother(2), 0);

  EXPECT_EQ(message_, "user-selected-quit");
  EXPECT_EQ(terminal_.out(), "The Karno launcher has quit.\n");
  EXPECT_EQ(terminal_.err(), "");
}

TEST_F(Quitting, GivesUpAfterThirtySecondsAndSaysWhatTheLauncherIsAt) {
  machine_.files.addFile(test::kLogFile, stringForLogDate(test::kStartOfTest) +
                                             " (4242) [*** ERROR ***] Abnormal[TERMINATION] Karno.app "
                                             "terminated abnormally. (reason=disk full)\n");

  EXPECT_EQ(typeAndWait({"quit"}, 29), std::nullopt);
  EXPECT_EQ(afterAnother(2), 4);

  EXPECT_EQ(terminal_.err(),
            "karnoctl: the launcher, process 4242, still runs after 30 s; state: asks the user whether to "
            "start the client again after it has failed\n");
}

TEST_F(Quitting, WaitsAsLongAsItIsTold) {
  EXPECT_EQ(typeAndWait({"quit", "--wait=5"}, 4.9), std::nullopt);

  EXPECT_EQ(afterAnother(0.4), 4);

  EXPECT_EQ(terminal_.err(),
            "karnoctl: the launcher, process 4242, still runs after 5 s; state: not known: the log tells "
            "nothing of it\n");
}

TEST_F(Quitting, EndsWithAStatusOfItsOwnWhenALauncherStillRuns) {
  EXPECT_EQ(typeAndWait({"quit", "--wait", "0"}, 0.1), 4);
}

// A clock that is set back does not stretch the wait.
TEST_F(Quitting, BoundsTheWaitByItsLooksAsWell) {
  machine_.onThread([this] {
    machine_.dispatch.sleep(1);
    machine_.clock.setNow(test::kStartOfTest - std::chrono::hours(5));
  });

  EXPECT_EQ(typeAndWait({"quit", "--wait=5"}, 6), 4);
}

TEST_F(Quitting, SaysThatNoLauncherRuns) {
  machine_.processTable.remove(FakeProcessTable::kLauncher);

  EXPECT_EQ(terminal_.run({"quit"}), 3);

  EXPECT_EQ(terminal_.err(), "karnoctl: no launcher runs\n");
}

TEST_F(Quitting, FailsWithoutTheNotificationService) {
  machine_.notifications.isReachable = false;

  EXPECT_EQ(terminal_.run({"quit"}), 1);

  EXPECT_EQ(
      terminal_.err(),
      "karnoctl: cannot post 'user-selected-quit': the session's notification service cannot be reached\n");
}

TEST_F(Quitting, RefusesWhatIsNoNumberOfSeconds) {
  EXPECT_EQ(terminal_.run({"quit", "--wait=soon"}), 64);
  EXPECT_EQ(terminal_.run({"quit", "--wait=-1"}), 64);
  EXPECT_EQ(terminal_.run({"quit", "--wait=86401"}), 64);

  EXPECT_EQ(terminal_.err(),
            "karnoctl: 'soon' is no number of seconds from 0 to 86400\nTry \"karnoctl help quit\".\n"
            "karnoctl: '-1' is no number of seconds from 0 to 86400\nTry \"karnoctl help quit\".\n"
            "karnoctl: '86401' is no number of seconds from 0 to 86400\nTry \"karnoctl help quit\".\n");
}

}  // namespace
}  // namespace karno::karnoctl
