#include "platform/linux/notifications/bus_listener.h"

#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>
#include <future>
#include <system_error>
#include <utility>

#include "platform/linux/dispatch/threads.h"
#include "platform/linux/notifications/bus_connection.h"
#include "platform/linux/notifications/notification_signal.h"
#include "platform/posix/retry.h"

namespace karno::platform {
namespace {

constexpr std::chrono::seconds kBusReplyMax(5);

}  // namespace

BusListener::BusListener(Client client, Notices& notices, const Waits& waits)
    : client_(std::move(client)),
      notices_(notices),
      observingMax_(waits.observing),
      wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      pause_(waits.firstPause, waits.longestPause) {}

BusListener::~BusListener() {
  if (!thread_.joinable()) return;
  submit([this] { stops_ = true; });
  thread_.join();
}

// The library waits 90 seconds for a bus that takes a connection and stands still.
bool BusListener::observe(Identifier identifier, const std::string& name, const std::string& object) {
  const auto done = std::make_shared<std::promise<void>>();
  const bool isSubmitted =
      submit([this, done, identifier, subject = Subject{.name = name, .object = object}] {
        subscribe(identifier, subject);
        done->set_value();
      });
  if (isSubmitted) done->get_future().wait_for(observingMax_);
  return isSubmitted;
}

void BusListener::forget(Identifier identifier) {
  submit([this, identifier] { unsubscribe(identifier); });
}

bool BusListener::submit(Command command) {
  if (const std::optional<std::string> failure = enqueue(std::move(command))) {
    notices_.warn("Notifications: none will be received. Reason: " + *failure);
    return false;
  }
  lookAgain();
  return true;
}

// Answers why the system gives no thread.
std::optional<std::string> BusListener::enqueue(Command command) {
  const std::scoped_lock lock(mutex_);
  try {
    if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
  } catch (const std::system_error& failure) {
    return failure.what();
  }
  commands_.push_back(std::move(command));
  return std::nullopt;
}

void BusListener::lookAgain() {
  const std::uint64_t one = 1;
  retryOnInterrupt([&] { return ::write(wakeUp_.get(), &one, sizeof one); });
}

void BusListener::run() {
  nameThisThread("Notifications");
  while (runCommands()) work();
  disconnect();
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

void BusListener::work() {
  if (nextAttempt_ && *nextAttempt_ <= Clock::now()) listen();
  try {
    if (isListening() && connection_->processPendingRequest()) return;
    waitForWork();
  } catch (const std::exception& failure) {
    disconnect();
    tryAgainLater(std::string("Notifications: the session bus is gone. Reason: ") + failure.what());
  }
}

void BusListener::waitForWork() {
  std::array<pollfd, 2> items = {
      {{.fd = wakeUp_.get(), .events = POLLIN, .revents = 0},
       {.fd = -1, .events = 0, .revents = 0}}};  // poll() passes over a negative one
  int timeout = millisecondsToNextAttempt();
  if (isListening()) {
    const sdbus::IConnection::PollData wanted = connection_->getEventLoopPollData();
    items[1] = {.fd = wanted.fd, .events = wanted.events, .revents = 0};
    const int untilReply = wanted.getPollTimeout();  // -1 unless the bus owes a reply
    if (timeout < 0 || (untilReply >= 0 && untilReply < timeout)) timeout = untilReply;
  }
  ::poll(items.data(), items.size(), timeout);

  std::uint64_t count = 0;
  retryOnInterrupt([&] { return ::read(wakeUp_.get(), &count, sizeof count); });
}

// As poll() wants it: -1 for ever. Rounded up, since a wake-up before the time would be followed by another.
int BusListener::millisecondsToNextAttempt() const {
  if (!nextAttempt_) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*nextAttempt_ - Clock::now());
  return static_cast<int>(std::max(left, std::chrono::milliseconds(0)).count());
}

bool BusListener::isListening() const { return connection_ != nullptr && client_.hasRoom(); }

void BusListener::subscribe(Identifier identifier, const Subject& subject) {
  Subscription& subscription = subscriptions_[subject];
  subscription.identifiers.push_back(identifier);
  if (subscription.slot == nullptr) listen();
}

void BusListener::unsubscribe(Identifier identifier) {
  for (auto& [subject, subscription] : subscriptions_) std::erase(subscription.identifiers, identifier);
  std::erase_if(subscriptions_, [](const auto& entry) { return entry.second.identifiers.empty(); });
  if (subscriptions_.empty()) nextAttempt_.reset();
}

// Connects if need be and asks for whatever the bus does not know of yet.
void BusListener::listen() {
  std::optional<std::string> failure = connectIfNeeded();
  if (connection_ != nullptr) {
    for (auto& [subject, subscription] : subscriptions_) {
      if (auto another = addMatch(subject, subscription)) failure = std::move(another);
    }
  }
  if (failure) {
    tryAgainLater(*failure);
    return;
  }
  nextAttempt_.reset();
  pause_.reset();
  if (!std::exchange(hasReported_, false)) return;
  notices_.inform("Notifications: connected to the session bus, they are received from now on");
}

std::optional<std::string> BusListener::connectIfNeeded() {
  if (connection_ != nullptr) return std::nullopt;
  try {
    connection_ = sdbus::createSessionBusConnection();
    connection_->setMethodCallTimeout(kBusReplyMax);
    return std::nullopt;
  } catch (const std::exception& failure) {
    return std::string("Notifications: no session bus, none will be received until there is one. Reason: ") +
           failure.what();
  }
}

std::optional<std::string> BusListener::addMatch(const Subject& subject, Subscription& subscription) {
  if (subscription.slot != nullptr) return std::nullopt;
  try {
    subscription.slot =
        connection_->addMatch(matchRule(subject.name, subject.object),
                              [this, subject](sdbus::Message& message) { tell(subject, message); });
    return std::nullopt;
  } catch (const std::exception& failure) {
    return "Notifications: failed to observe " + subject.name + ". Reason: " + failure.what();
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

void BusListener::disconnect() {
  for (auto& [subject, subscription] : subscriptions_) subscription.slot.reset();
  abandon(connection_);
}

void BusListener::tryAgainLater(const std::string& line) {
  if (!subscriptions_.empty()) nextAttempt_ = Clock::now() + pause_.next();
  if (!std::exchange(hasReported_, true)) notices_.warn(line);
}

}  // namespace karno::platform
