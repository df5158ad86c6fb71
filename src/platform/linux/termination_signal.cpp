#include "platform/linux/termination_signal.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "platform/cocoa/class_builder.h"
#include "platform/cocoa/strings.h"
#include "platform/never_destroyed.h"

namespace karno::platform::cocoa {
namespace {

// Run loop modes in which the launcher can find itself: at rest, in an alert, while a menu or button is held.
constexpr const char* kModes[] = {"NSDefaultRunLoopMode", "NSModalPanelRunLoopMode",
                                  "NSEventTrackingRunLoopMode"};
constexpr objc::CInt kReadableDescriptor{0};  // ET_RDESC

// The pipe stays open until the process ends, since the signal can come until then.
std::array<int, 2> wakePipe = {-1, -1};

void onSignal(int) {
  const int before = errno;
  const char byte = 0;
  // A full pipe already holds what this would add.
  [[maybe_unused]] const ssize_t written = write(wakePipe[1], &byte, 1);
  errno = before;
}

void receivedEvent(objc::Id, void*, int, void*, objc::Id) {
  char byte = 0;
  if (read(wakePipe[0], &byte, 1) == 1) {
    const objc::Id application = objc::send(objc::classNamed("NSApplication"), "sharedApplication");
    objc::send<void>(application, "terminate:", nullptr);
  }
}

void watchPipe() {
  const Class watcherClass = objc::ClassBuilder("KarnoSignalWatcher", objc::classNamed("NSObject"))
                                 .method<receivedEvent>("receivedEvent:type:extra:forMode:")
                                 .registerClass();
  // The run loop does not keep its watchers.
  static NeverDestroyed<objc::Object> watcher(
      objc::Object::adopting(objc::send(objc::send(watcherClass, "alloc"), "init")));
  const objc::Id runLoop = objc::send(objc::classNamed("NSRunLoop"), "currentRunLoop");
  for (const char* const mode : kModes) {
    const auto descriptor = static_cast<std::intptr_t>(wakePipe[0]);
    objc::send<void>(runLoop, "addEvent:type:watcher:forMode:", reinterpret_cast<void*>(descriptor),
                     kReadableDescriptor, watcher.get(), objc::string(mode));
  }
}

}  // namespace

void terminateOnSignal() {
  if (wakePipe[0] >= 0) {
    return;
  }
  if (pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe for the termination signal");
  }
  watchPipe();
  struct sigaction action = {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, nullptr);
}

}  // namespace karno::platform::cocoa
