#include "platform/cocoa/runtime/main_thread_call.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

#include "platform/cocoa/runtime/class_builder.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/posix/scoped_descriptor.h"

// GNUstep's run loop (base 1.28) is not woken by what the main thread asks itself to perform: it sleeps on
// until something else happens. So the requests are counted by a descriptor that the run loop watches.
namespace karno::platform::cocoa {
namespace {

// In which the run loop can be: at rest, in an alert, while a menu or a button is held.
constexpr std::array kModes = {"NSDefaultRunLoopMode", "NSModalPanelRunLoopMode",
                               "NSEventTrackingRunLoopMode"};
constexpr objc::CInt kReadableDescriptor{0};  // ET_RDESC

ScopedDescriptor makeCounter() {
  const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category(), "eventfd");
  }
  return ScopedDescriptor(descriptor);
}

}  // namespace

struct MainThreadCall::Native {
  explicit Native(std::function<void()> called);
  ~Native();

  // Takes one request off the counter.
  void receive() {
    std::uint64_t one = 0;
    if (read(counter.get(), &one, sizeof one) == sizeof one) {
      function();
    }
  }

  void* eventData() const { return reinterpret_cast<void*>(static_cast<std::intptr_t>(counter.get())); }

  std::function<void()> function;
  ScopedDescriptor counter = makeCounter();
  objc::Object watcher;  // the run loop does not keep it
};

namespace {

void receivedEvent(objc::Id self, void*, int, void*, objc::Id) {
  static_cast<MainThreadCall::Native*>(objc::stateOf(self))->receive();
}

objc::Object makeWatcher() {
  static const Class made = objc::ClassBuilder("KarnoRunLoopWatcher", objc::classNamed("NSObject"))
                                .state()
                                .method<receivedEvent>("receivedEvent:type:extra:forMode:")
                                .registerClass();
  return objc::Object::adopting(objc::send(objc::send(made, "alloc"), "init"));
}

objc::Id runLoop() { return objc::send(objc::classNamed("NSRunLoop"), "currentRunLoop"); }

}  // namespace

MainThreadCall::Native::Native(std::function<void()> called)
    : function(std::move(called)), watcher(makeWatcher()) {
  const objc::AutoreleasePool pool;
  objc::setState(watcher.get(), this);
  for (const char* const mode : kModes) {
    objc::send<void>(runLoop(), "addEvent:type:watcher:forMode:", eventData(), kReadableDescriptor, watcher,
                     objc::string(mode));
  }
}

MainThreadCall::Native::~Native() {
  const objc::AutoreleasePool pool;
  for (const char* const mode : kModes) {
    objc::send<void>(runLoop(), "removeEvent:type:forMode:all:", eventData(), kReadableDescriptor,
                     objc::string(mode), true);
  }
}

MainThreadCall::MainThreadCall(std::function<void()> function)
    : native_(std::make_unique<Native>(std::move(function))) {}

MainThreadCall::~MainThreadCall() = default;

void MainThreadCall::request() noexcept {
  const int before = errno;
  const std::uint64_t one = 1;
  // Can fail only when the counter is full.
  [[maybe_unused]] const ssize_t written = write(native_->counter.get(), &one, sizeof one);
  errno = before;
}

}  // namespace karno::platform::cocoa
