#include <signal.h>
#include <sys/event.h>
#include <sys/time.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdint>

#include "embedded_client/parent_watch.h"
#include "platform/platform.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::client {

void waitForProcessEnd(std::int32_t processIdentifier) {
  const platform::ScopedDescriptor queue(::kqueue());
  struct kevent change {};
  EV_SET(&change, static_cast<std::uintptr_t>(processIdentifier), EVFILT_PROC, EV_ADD | EV_ONESHOT, NOTE_EXIT,
         0, nullptr);
  struct kevent event {};
  // Registering fails with ESRCH when the process has ended already.
  if (queue.get() >= 0 && ::kevent(queue.get(), &change, 1, nullptr, 0, nullptr) == 0) {
    while (::kevent(queue.get(), nullptr, 0, &event, 1, nullptr) < 0 && errno == EINTR) {
    }
    return;
  }
  while (::kill(processIdentifier, 0) == 0 || errno == EPERM) platform::host().dispatch.sleep(1.0);
}

}  // namespace karno::client
