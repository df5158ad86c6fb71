#include "platform/posix/processes/child_registry.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace karno::platform {
namespace {

// A process that is no child of this one: a wait for it finds none, as when a child has gone and the system
// has given its number away.
class Stranger {
 public:
  Stranger() {
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) return;
    const pid_t parent = ::fork();
    if (parent == 0) {
      const pid_t child = ::fork();
      if (child == 0) {
        ::execl("/bin/sleep", "sleep", "60", nullptr);
        ::_exit(127);
      }
      ::_exit(::write(ends[1], &child, sizeof child) == sizeof child ? 0 : 1);
    }
    ::waitpid(parent, nullptr, 0);
    if (::read(ends[0], &processIdentifier_, sizeof processIdentifier_) < 0) processIdentifier_ = -1;
    ::close(ends[0]);
    ::close(ends[1]);
  }
  Stranger(const Stranger&) = delete;
  Stranger& operator=(const Stranger&) = delete;
  ~Stranger() {
    if (processIdentifier_ > 0) ::kill(processIdentifier_, SIGKILL);
  }

  std::int32_t processIdentifier() const { return processIdentifier_; }

 private:
  pid_t processIdentifier_ = -1;
};

TEST(ChildRegistry, DoesNotSignalAStrangerWhoHasTheNumberOfAChildThatHasGone) {
  const Stranger stranger;
  ChildRegistry registry;
  registry.beginWatching(stranger.processIdentifier());
  ASSERT_FALSE(registry.watchToEnd(stranger.processIdentifier()));

  const int error = registry.terminate(stranger.processIdentifier());

  EXPECT_EQ(error, ESRCH);
  EXPECT_EQ(::kill(stranger.processIdentifier(), 0), 0);
}

TEST(ChildRegistry, SignalsAChildThatGotTheNumberOfOneThatHasGone) {
  const Stranger child;
  ChildRegistry registry;
  registry.beginWatching(child.processIdentifier());
  ASSERT_FALSE(registry.watchToEnd(child.processIdentifier()));

  registry.beginWatching(child.processIdentifier());
  const int error = registry.terminate(child.processIdentifier());

  EXPECT_EQ(error, 0);
}

TEST(ChildRegistry, ForgetsTheOldestOfMoreChildrenThanItRemembers) {
  const Stranger first;
  ChildRegistry registry;
  registry.beginWatching(first.processIdentifier());
  ASSERT_FALSE(registry.watchToEnd(first.processIdentifier()));
  constexpr std::int32_t kNoProcess = 2'000'000'000;
  for (std::int32_t next = 0; next < static_cast<std::int32_t>(kReapedChildrenMax); ++next) {
    registry.beginWatching(kNoProcess + next);
    registry.watchToEnd(kNoProcess + next);
  }

  const int error = registry.terminate(first.processIdentifier());

  EXPECT_EQ(error, 0);
}

}  // namespace
}  // namespace karno::platform
