#include "installer/process_end.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/scoped_descriptor.h"

namespace karno::installer {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// poll() counts in int; a longer wait is made of several.
constexpr milliseconds kPollMax = std::chrono::hours(1);

}  // namespace

int waitForEnd(pid_t process, std::chrono::seconds limit) {
  // glibc has the call since 2.36 only.
  const platform::ScopedDescriptor descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0U)));
  if (!descriptor.isOpen()) return errno == ESRCH ? 0 : errno;

  const auto end = Clock::now() + limit;
  while (true) {
    const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
    pollfd watched{.fd = descriptor.get(), .events = POLLIN, .revents = 0};
    const int count =
        ::poll(&watched, 1, static_cast<int>(std::clamp(left, milliseconds(0), kPollMax).count()));
    if (count > 0) return 0;
    if (count < 0 && errno != EINTR) return errno;
    if (count == 0 && Clock::now() >= end) return ETIMEDOUT;
  }
}

}  // namespace karno::installer
