#include <poll.h>
#include <signal.h>

// The header has no guard for C++ in glibc 2.36.
extern "C" {
#include <sys/pidfd.h>
}

#include <cerrno>

#include "embedded_client/parent_watch.h"
#include "platform/platform.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::client {

void waitForProcessEnd(std::int32_t processIdentifier) {
  // A pidfd becomes readable when its process ends, be it reaped or not (Linux 5.3).
  const platform::ScopedDescriptor process(::pidfd_open(processIdentifier, 0));
  pollfd watched{.fd = process.get(), .events = POLLIN, .revents = 0};
  if (watched.fd >= 0) {
    while (::poll(&watched, 1, -1) < 0 && errno == EINTR) {
    }
    return;
  }
  while (::kill(processIdentifier, 0) == 0 || errno == EPERM) platform::host().dispatch.sleep(1.0);
}

}  // namespace karno::client
