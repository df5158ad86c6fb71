#include "platform/linux/preferences/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <thread>

#include "platform/posix/retry.h"

namespace karno::platform {
namespace {

constexpr std::chrono::microseconds kFirstPause(50);
constexpr std::chrono::microseconds kLongestPause(2000);

}  // namespace

int FileLock::lock(std::chrono::milliseconds waitMax) {
  file_.reset(retryOnInterrupt([&] { return ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600); }));
  if (!file_.isOpen()) return errno;

  // flock() knows no time-out, so it is asked again and again.
  const auto giveUpAt = std::chrono::steady_clock::now() + waitMax;
  for (auto pause = kFirstPause;; pause = std::min(pause * 2, kLongestPause)) {
    if (::flock(file_.get(), LOCK_EX | LOCK_NB) == 0) return 0;
    if (errno != EWOULDBLOCK && errno != EINTR) return errno;
    if (std::chrono::steady_clock::now() >= giveUpAt) return ETIMEDOUT;
    std::this_thread::sleep_for(pause);
  }
}

}  // namespace karno::platform
