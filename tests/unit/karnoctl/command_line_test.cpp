#include "karnoctl/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fake_platform.h"
#include "ipc/wrapper_protocol.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using ::testing::StartsWith;

using test::Terminal;

// A machine that keeps what a launcher there would receive.
class Listener {
 public:
  Listener() {
    machine_.notifications.addObserver(this, std::string(kWrapperNotificationName),
                                       std::string(kWrapperNotificationObject),
                                       [this](const platform::DistributedNotification& notification) {
                                         received_.push_back(notification.userInfo);
                                       });
  }

  const std::vector<platform::Value::Dictionary>& received() {
    machine_.runUntilIdle();
    return received_;
  }

 private:
  test::FakePlatform machine_;
  std::vector<platform::Value::Dictionary> received_;
};

TEST(Karnoctl, PostsWhatTheEmbeddedApplicationWouldPost) {
  Listener launcher;
  Terminal terminal;

  const int status = terminal.run({"post", "app-is-terminating-abnormally", "--reason", "disk full"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(launcher.received(),
            (std::vector<platform::Value::Dictionary>{
                {{"message", "app-is-terminating-abnormally"}, {"reason", "disk full"}}}));
  EXPECT_EQ(terminal.out(), "");
  EXPECT_EQ(terminal.err(), "");
}

TEST(Karnoctl, PostsNoReasonWhenNoneIsGiven) {
  Listener launcher;
  Terminal terminal;

  const int status = terminal.run({"post", "user-selected-quit"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(launcher.received(),
            (std::vector<platform::Value::Dictionary>{{{"message", "user-selected-quit"}}}));
}

TEST(Karnoctl, PostsNothingWhenTheMessageIsUnknown) {
  Listener launcher;
  Terminal terminal;

  const int status = terminal.run({"post", "user-selected-quti"});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(),
            "karnoctl: unknown message 'user-selected-quti'; did you mean 'user-selected-quit'?\n"
            "Try \"karnoctl help post\".\n");
  EXPECT_TRUE(launcher.received().empty());
}

TEST(Karnoctl, TellsItsVersion) {
  Terminal terminal;

  const int status = terminal.run({"--version"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.out(), "karnoctl 1.2.3\n");
}

TEST(Karnoctl, SaysTheSameForHelpAsForTheHelpOption) {
  Terminal asked;
  Terminal opted;

  EXPECT_EQ(asked.run({"help"}), 0);
  EXPECT_EQ(opted.run({"--help"}), 0);

  EXPECT_EQ(asked.out(), opted.out());
  EXPECT_THAT(asked.out(), StartsWith("Usage: karnoctl VERB [ARGUMENT...]\n"));
}

TEST(Karnoctl, ExplainsAVerbByEitherName) {
  Terminal asked;
  Terminal opted;

  EXPECT_EQ(asked.run({"help", "post"}), 0);
  EXPECT_EQ(opted.run({"post", "--help"}), 0);

  EXPECT_EQ(asked.out(), opted.out());
  EXPECT_THAT(asked.out(), StartsWith("Usage: karnoctl post MESSAGE [--reason TEXT]\n"));
}

TEST(Karnoctl, ListsWhatItCanDo) {
  Terminal terminal;

  terminal.run({"--help"});

  EXPECT_EQ(
      terminal.out(),
      "Usage: karnoctl VERB [ARGUMENT...]\n"
      "       karnoctl help [VERB]\n"
      "       karnoctl --help | --version\n"
      "\n"
      "Talks to the Karno launcher that runs in your session.\n"
      "\n"
      "Verbs:\n"
      "  status     say whether the launcher and its client run, and what they are at\n"
      "  diagnose   say what went wrong in the last session, from the log\n"
      "  log        show what the launcher has logged\n"
      "  explain    say what the next start of the launcher does, and why\n"
      "  self-check say what is wrong with the launcher's bundle\n"
      "  post       tell the launcher what its client would tell it\n"
      "  quit       have the launcher and its client quit, and wait for that\n"
      "  report     put what support wants to see into one file\n"
      "  help       say how a verb is used\n"
      "\n"
      "Exit status: 0 done, 1 failed, 2 no log, 3 no launcher runs, 4 it does not quit, 64 wrong usage.\n");
}

TEST(Karnoctl, SuggestsTheVerbThatWasMeant) {
  Terminal terminal;

  const int status = terminal.run({"pots"});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(),
            "karnoctl: unknown verb 'pots'; did you mean 'post'?\nTry \"karnoctl --help\".\n");
}

TEST(Karnoctl, RefusesWhatFollowsAHelpOrAVersion) {
  test::FakePlatform machine;
  Terminal terminal;

  EXPECT_EQ(terminal.run({"--version", "now"}), 64);
  EXPECT_EQ(terminal.run({"help", "post", "log"}), 64);

  EXPECT_EQ(terminal.out(), "");
  EXPECT_EQ(terminal.err(),
            "karnoctl: --version stands alone\nTry \"karnoctl --help\".\n"
            "karnoctl: help takes one verb at most\nTry \"karnoctl --help\".\n");
}

TEST(Karnoctl, SaysThatAMessageCannotBePosted) {
  test::FakePlatform machine;
  Terminal terminal;
  machine.notifications.isReachable = false;

  EXPECT_EQ(terminal.run({"post", "user-selected-quit"}), 1);

  EXPECT_EQ(
      terminal.err(),
      "karnoctl: cannot post 'user-selected-quit': the session's notification service cannot be reached\n");
}

TEST(Karnoctl, WantsAVerb) {
  Terminal terminal;

  const int status = terminal.run({});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(), "karnoctl: what is to be done? (no verb given)\nTry \"karnoctl --help\".\n");
}

TEST(Karnoctl, RefusesArgumentsOfAVerbThatTakesNone) {
  Terminal terminal;

  EXPECT_EQ(terminal.run({"status", "--now"}), 64);
  EXPECT_EQ(terminal.run({"explain", "why"}), 64);

  EXPECT_EQ(terminal.err(),
            "karnoctl: unknown option '--now'\nTry \"karnoctl help status\".\n"
            "karnoctl: explain takes no argument 'why'\nTry \"karnoctl help explain\".\n");
}

TEST(Karnoctl, RefusesOptionsItDoesNotKnow) {
  Terminal terminal;

  const int status = terminal.run({"-v"});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(), "karnoctl: unknown option '-v'\nTry \"karnoctl --help\".\n");
}

class KarnoctlMessage : public testing::TestWithParam<std::string_view> {};

TEST_P(KarnoctlMessage, ReachesTheLauncher) {
  Listener launcher;
  Terminal terminal;
  const std::string message(GetParam());

  const int status = terminal.run({"post", message});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(launcher.received(), (std::vector<platform::Value::Dictionary>{{{"message", message}}}));
}

INSTANTIATE_TEST_SUITE_P(Each, KarnoctlMessage, testing::ValuesIn(kWrapperMessages));

}  // namespace
}  // namespace karno::karnoctl
