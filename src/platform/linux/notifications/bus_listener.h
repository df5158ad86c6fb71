#pragma once
#include <sdbus-c++/IConnection.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/distributed_notifications.h"
#include "platform/linux/notifications/growing_pause.h"
#include "platform/notices.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {

// Reads notifications from the session bus on a thread of its own, which sleeps in the kernel while there are
// none. The first observe() connects. Without a bus, and when it goes away, the thread tries again and again
// to connect, as long as anybody observes; what is posted until then is lost. One notice says that there is
// no bus, a second one that there is one again.
class BusListener {
 public:
  using Identifier = std::uint64_t;

  // Called on the listener's thread; neither may throw.
  struct Client {
    std::function<void(Identifier, DistributedNotification)> receive;
    std::function<bool()> hasRoom;  // when not, notifications are left with the bus until lookAgain()
  };

  struct Waits {
    std::chrono::milliseconds firstPause{1'000};  // before the first attempt at a new connection
    std::chrono::milliseconds longestPause{30'000};
    std::chrono::milliseconds observing{10'000};  // for a bus that does not answer who observes
  };

  BusListener(Client client, Notices& notices, const Waits& waits);
  BusListener(const BusListener&) = delete;
  BusListener& operator=(const BusListener&) = delete;
  ~BusListener();  // waits for an attempt to connect that is under way, not for the next one

  // Once it returns, every notification posted from now on is heard, unless there is no bus or it does not
  // answer in time; then they are heard from the second notice on. Any thread but the listener's. False when
  // the system gives no thread to listen on.
  bool observe(Identifier identifier, const std::string& name, const std::string& object);
  void forget(Identifier identifier);

  // The client has room again. Any thread.
  void lookAgain();

 private:
  struct Subject {
    std::string name;
    std::string object;
    auto operator<=>(const Subject&) const = default;
  };
  struct Subscription {
    std::vector<Identifier> identifiers;  // told in this order
    sdbus::Slot slot;                     // null while the bus does not know of it
  };
  using Command = std::function<void()>;

  using Clock = std::chrono::steady_clock;

  bool submit(Command command);
  std::optional<std::string> enqueue(Command command);

  // All of these run on the thread; a text is the reason of a failure.
  void run();
  bool runCommands();
  void work();
  void waitForWork();
  int millisecondsToNextAttempt() const;
  bool isListening() const;
  void subscribe(Identifier identifier, const Subject& subject);
  void unsubscribe(Identifier identifier);
  void listen();
  std::optional<std::string> connectIfNeeded();
  std::optional<std::string> addMatch(const Subject& subject, Subscription& subscription);
  void tell(const Subject& subject, sdbus::Message& message);
  void disconnect();
  void tryAgainLater(const std::string& line);

  const Client client_;
  Notices& notices_;
  const std::chrono::milliseconds observingMax_;
  const ScopedDescriptor wakeUp_;

  std::mutex mutex_;
  std::deque<Command> commands_;
  std::thread thread_;
  bool stops_ = false;

  std::unique_ptr<sdbus::IConnection> connection_;
  std::map<Subject, Subscription> subscriptions_;  // their slots go before the connection
  GrowingPause pause_;
  std::optional<Clock::time_point> nextAttempt_;  // absent while all is observed
  bool hasReported_ = false;
};

}  // namespace karno::platform
