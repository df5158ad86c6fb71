#include "platform/linux/notifications/bus_listener.h"

#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <exception>
#include <future>
#include <system_error>
#include <utility>

#include "platform/linux/dispatch/threads.h"
#include "platform/linux/notifications/bus_connection.h"
#include "platform/linux/notifications/notification_signal.h"
#include "platform/posix/console_line.h"
#include "platform/posix/retry.h"

namespace karno::platform {
namespace {

constexpr std::chrono::seconds kBusReplyMax(5);

}  // namespace

BusListener::BusListener(Client client)
    : client_(std::move(client)), wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

BusListener::~BusListener() {
  if (!thread_.joinable()) return;
  submit([this] { stops_ = true; });
  thread_.join();
}

bool BusListener::observe(Identifier identifier, const std::string& name, const std::string& object) {
  std::promise<void> done;
  const bool isSubmitted = submit([&] {
    const auto subscription = subscriptions_.try_emplace(Subject{.name = name, .object = object}).first;
    subscription->second.identifiers.push_back(identifier);
    connectIfNeeded();
    if (subscription->second.slot == nullptr) addMatch(subscription->first, subscription->second);
    done.set_value();
  });
  if (isSubmitted) done.get_future().wait();
  return isSubmitted;
}

void BusListener::forget(Identifier identifier) {
  submit([this, identifier] {
    for (auto& [subject, subscription] : subscriptions_) std::erase(subscription.identifiers, identifier);
    std::erase_if(subscriptions_, [](const auto& entry) { return entry.second.identifiers.empty(); });
  });
}

bool BusListener::submit(Command command) {
  {
    const std::scoped_lock lock(mutex_);
    try {
      if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
    } catch (const std::system_error& failure) {
      writeConsoleLine(std::string("Notifications: none will be received. Reason: ") + failure.what());
      return false;
    }
    commands_.push_back(std::move(command));
  }
  lookAgain();
  return true;
}

void BusListener::lookAgain() {
  const std::uint64_t one = 1;
  retryOnInterrupt([&] { return ::write(wakeUp_.get(), &one, sizeof one); });
}

void BusListener::run() {
  nameThisThread("Notifications");
  while (runCommands()) {
    if (!processOne()) waitForWork();
  }
  disconnect({});
}

bool BusListener::runCommands() {
  std::unique_lock lock(mutex_);
  while (!commands_.empty()) {
    const Command command = std::move(commands_.front());
    commands_.pop_front();
    lock.unlock();
    command();
    lock.lock();
  }
  return !stops_;
}

bool BusListener::processOne() {
  if (!isListening()) return false;
  try {
    return connection_->processPendingRequest();
  } catch (const std::exception& failure) {
    disconnect(std::string("Notifications: the session bus is gone. Reason: ") + failure.what());
    return false;
  }
}

void BusListener::waitForWork() {
  std::array<pollfd, 2> items = {
      {{.fd = wakeUp_.get(), .events = POLLIN, .revents = 0},
       {.fd = -1, .events = 0, .revents = 0}}};  // poll() passes over a negative one
  int timeout = -1;
  if (isListening()) {
    const sdbus::IConnection::PollData wanted = connection_->getEventLoopPollData();
    items[1] = {.fd = wanted.fd, .events = wanted.events, .revents = 0};
    timeout = wanted.getPollTimeout();  // -1 unless the bus owes a reply
  }
  ::poll(items.data(), items.size(), timeout);

  std::uint64_t count = 0;
  retryOnInterrupt([&] { return ::read(wakeUp_.get(), &count, sizeof count); });
}

bool BusListener::isListening() const { return connection_ != nullptr && client_.hasRoom(); }

void BusListener::connectIfNeeded() {
  if (connection_ != nullptr) return;
  try {
    connection_ = sdbus::createSessionBusConnection();
    connection_->setMethodCallTimeout(kBusReplyMax);
  } catch (const std::exception& failure) {
    report(std::string("Notifications: no session bus, none will be received. Reason: ") + failure.what());
    return;
  }
  hasReported_ = false;
  for (auto& [subject, subscription] : subscriptions_) addMatch(subject, subscription);
}

void BusListener::addMatch(const Subject& subject, Subscription& subscription) {
  if (connection_ == nullptr) return;
  try {
    subscription.slot =
        connection_->addMatch(matchRule(subject.name, subject.object),
                              [this, subject](sdbus::Message& message) { tell(subject, message); });
  } catch (const std::exception& failure) {
    report("Notifications: failed to observe " + subject.name + ". Reason: " + failure.what());
  }
}

// Throws nothing: C frames of the bus library are on the stack.
void BusListener::tell(const Subject& subject, sdbus::Message& message) {
  const std::optional<DistributedNotification> notification = notificationFromMessage(message);
  if (!notification) return;
  if (notification->name != subject.name || notification->object.value_or("") != subject.object) return;
  for (const Identifier identifier : subscriptions_[subject].identifiers)
    client_.receive(identifier, *notification);
}

void BusListener::disconnect(const std::string& line) {
  for (auto& [subject, subscription] : subscriptions_) subscription.slot.reset();
  abandon(connection_);
  if (!line.empty()) report(line);
}

void BusListener::report(const std::string& line) {
  if (!std::exchange(hasReported_, true)) writeConsoleLine(line);
}

}  // namespace karno::platform
