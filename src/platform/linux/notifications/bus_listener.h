#pragma once
#include <sdbus-c++/IConnection.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/distributed_notifications.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {

// Reads notifications from the session bus on a thread of its own, which sleeps in the kernel while there are
// none. The first observe() connects. Without a bus, or when it goes away, one console line says so and
// nothing more is heard; a later observe() tries again.
class BusListener {
 public:
  using Identifier = std::uint64_t;

  // Called on the listener's thread; neither may throw.
  struct Client {
    std::function<void(Identifier, DistributedNotification)> receive;
    std::function<bool()> hasRoom;  // when not, notifications are left with the bus until lookAgain()
  };

  explicit BusListener(Client client);
  BusListener(const BusListener&) = delete;
  BusListener& operator=(const BusListener&) = delete;
  ~BusListener();

  // Once it returns, every notification posted from now on is heard. Any thread but the
  // listener's. False when the system gives no thread to listen on.
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

  bool submit(Command command);

  // All of these run on the thread.
  void run();
  bool runCommands();
  bool processOne();
  void waitForWork();
  bool isListening() const;
  void connectIfNeeded();
  void addMatch(const Subject& subject, Subscription& subscription);
  void tell(const Subject& subject, sdbus::Message& message);
  void disconnect(const std::string& line);
  void report(const std::string& line);

  const Client client_;
  const ScopedDescriptor wakeUp_;

  std::mutex mutex_;
  std::deque<Command> commands_;
  std::thread thread_;
  bool stops_ = false;

  std::unique_ptr<sdbus::IConnection> connection_;
  std::map<Subject, Subscription> subscriptions_;  // their slots go before the connection
  bool hasReported_ = false;
};

}  // namespace karno::platform
