#include "karnoctl/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "fake_platform.h"
#include "ipc/wrapper_protocol.h"

namespace karno::karnoctl {
namespace {

using ::testing::StartsWith;

// karnoctl on a machine of its own; what the launcher there would receive is kept.
class Terminal {
 public:
  Terminal() {
    machine_.notifications.addObserver(this, std::string(kWrapperNotificationName),
                                       std::string(kWrapperNotificationObject),
                                       [this](const platform::DistributedNotification& notification) {
                                         received_.push_back(notification.userInfo);
                                       });
  }

  int run(const std::vector<std::string>& arguments) {
    Context context{out_, err_, [] { return std::ref(platform::host()); }};
    const int status = karnoctl::run(arguments, "1.2.3", context);
    machine_.runUntilIdle();
    return status;
  }

  std::string out() const { return out_.str(); }
  std::string err() const { return err_.str(); }
  const std::vector<platform::Value::Dictionary>& received() const { return received_; }

 private:
  test::FakePlatform machine_;
  std::ostringstream out_;
  std::ostringstream err_;
  std::vector<platform::Value::Dictionary> received_;
};

TEST(Karnoctl, PostsWhatTheEmbeddedApplicationWouldPost) {
  Terminal terminal;

  const int status = terminal.run({"post", "app-is-terminating-abnormally", "--reason", "disk full"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.received(),
            (std::vector<platform::Value::Dictionary>{
                {{"message", "app-is-terminating-abnormally"}, {"reason", "disk full"}}}));
  EXPECT_EQ(terminal.out(), "");
  EXPECT_EQ(terminal.err(), "");
}

TEST(Karnoctl, PostsNoReasonWhenNoneIsGiven) {
  Terminal terminal;

  const int status = terminal.run({"post", "user-selected-quit"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.received(),
            (std::vector<platform::Value::Dictionary>{{{"message", "user-selected-quit"}}}));
}

TEST(Karnoctl, PostsNothingWhenTheMessageIsUnknown) {
  Terminal terminal;

  const int status = terminal.run({"post", "user-selected-quti"});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(),
            "karnoctl: unknown message 'user-selected-quti'; did you mean 'user-selected-quit'?\n"
            "Try \"karnoctl help post\".\n");
  EXPECT_TRUE(terminal.received().empty());
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

TEST(Karnoctl, SuggestsTheVerbThatWasMeant) {
  Terminal terminal;

  const int status = terminal.run({"pots"});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(),
            "karnoctl: unknown verb 'pots'; did you mean 'post'?\nTry \"karnoctl --help\".\n");
}

TEST(Karnoctl, WantsAVerb) {
  Terminal terminal;

  const int status = terminal.run({});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(), "karnoctl: what is to be done? (no verb given)\nTry \"karnoctl --help\".\n");
}

TEST(Karnoctl, RefusesOptionsItDoesNotKnow) {
  Terminal terminal;

  const int status = terminal.run({"-v"});

  EXPECT_EQ(status, 64);
  EXPECT_EQ(terminal.err(), "karnoctl: unknown option '-v'\nTry \"karnoctl --help\".\n");
}

}  // namespace
}  // namespace karno::karnoctl
