// The least application that hears a notification: an observer on the main thread, where an application is
// told, that writes a line for each. Says "listening" when it does.
#include "bare_observer.h"

#include <unistd.h>

#include <memory>
#include <string>

#include "ipc/wrapper_protocol.h"
#include "platform/platform.h"

namespace {

void say(std::string line) {
  line += '\n';
  if (write(STDERR_FILENO, line.data(), line.size()) < 0) _exit(74);
}

class Observer final : public karno::platform::ApplicationDelegate {
 public:
  void applicationDidFinishLaunching() override {
    karno::platform::host().distributedNotifications.addObserver(
        this, std::string(karno::kWrapperNotificationName), std::string(karno::bench::kBareObserverObject),
        [](const karno::platform::DistributedNotification& notification) {
          const auto text = notification.userInfo.find(karno::kWrapperMessageKey);
          if (text != notification.userInfo.end()) say("Received '" + text->second.description() + "'");
        });
    say("listening");
  }
  void applicationWillTerminate() override {}
};

}  // namespace

int main(int argc, char** argv) {
  return karno::platform::applicationMain(argc, argv, [] { return std::make_shared<Observer>(); });
}
