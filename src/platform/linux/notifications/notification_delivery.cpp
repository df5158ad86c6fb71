#include "platform/linux/notifications/notification_delivery.h"

#include <exception>
#include <string>
#include <utility>

#include "platform/posix/console_line.h"

namespace karno::platform {
namespace {

constexpr int kBatchMax = 256;  // then other blocks of the main queue have their turn

std::size_t bytesOf(const Value& value) {
  std::size_t bytes = sizeof value;
  if (const auto* text = value.get<std::string>()) bytes += text->size();
  if (const auto* data = value.get<Value::Data>()) bytes += data->size();
  if (const auto* array = value.get<Value::Array>()) {
    for (const Value& element : *array) bytes += bytesOf(element);
  }
  if (const auto* dictionary = value.get<Value::Dictionary>()) {
    for (const auto& [key, element] : *dictionary) bytes += key.size() + bytesOf(element);
  }
  return bytes;
}

std::size_t bytesOf(const DistributedNotification& notification) {
  std::size_t bytes = notification.name.size() + notification.object.value_or("").size();
  for (const auto& [key, element] : notification.userInfo) bytes += key.size() + bytesOf(element);
  return bytes;
}

}  // namespace

void NotificationDelivery::setRoomHandler(std::function<void()> onRoom) {
  const std::scoped_lock lock(mutex_);
  onRoom_ = std::move(onRoom);
}

void NotificationDelivery::close() {
  const std::scoped_lock lock(mutex_);
  onRoom_ = nullptr;
  registrations_.clear();
}

NotificationDelivery::Identifier NotificationDelivery::add(const void* observer, Handler handler) {
  const std::scoped_lock lock(mutex_);
  registrations_[++lastIdentifier_] = {.observer = observer,
                                       .handler = std::make_shared<const Handler>(std::move(handler))};
  return lastIdentifier_;
}

std::vector<NotificationDelivery::Identifier> NotificationDelivery::remove(const void* observer) {
  std::vector<Identifier> removed;
  const std::scoped_lock lock(mutex_);
  for (auto entry = registrations_.begin(); entry != registrations_.end();) {
    if (entry->second.observer == observer) {
      removed.push_back(entry->first);
      entry = registrations_.erase(entry);
    } else {
      ++entry;
    }
  }
  return removed;
}

void NotificationDelivery::receive(Identifier identifier, DistributedNotification notification) {
  const std::size_t bytes = bytesOf(notification);
  bool mustSchedule = false;
  {
    const std::scoped_lock lock(mutex_);
    waiting_.push_back({.identifier = identifier, .bytes = bytes, .notification = std::move(notification)});
    waitingBytes_ += bytes;
    isFull_ = isFull_ || waiting_.size() >= kWaitingMax || waitingBytes_ >= kWaitingBytesMax;
    mustSchedule = !std::exchange(isScheduled_, true);
  }
  if (mustSchedule) schedule();
}

bool NotificationDelivery::hasRoom() {
  const std::scoped_lock lock(mutex_);
  return !isFull_;
}

void NotificationDelivery::schedule() {
  mainQueue_.async([self = shared_from_this()] { self->deliverBatch(); });
}

void NotificationDelivery::deliverBatch() {
  {
    const std::scoped_lock lock(mutex_);
    isScheduled_ = false;
  }
  for (int count = 0; count < kBatchMax && deliverNext(); ++count) {
  }
}

bool NotificationDelivery::deliverNext() {
  const std::optional<Step> step = takeNext();
  if (!step) return false;
  if (step->hasNewRoom && onRoom_) onRoom_();  // the main thread alone changes it
  if (step->mustSchedule) schedule();
  if (step->handler == nullptr) return true;

  try {
    (*step->handler)(step->notification);
  } catch (const std::exception& failure) {
    writeConsoleLine(std::string("Notifications: a handler threw an exception: ") + failure.what());
  } catch (...) {
    writeConsoleLine("Notifications: a handler threw an exception");
  }
  return true;
}

std::optional<NotificationDelivery::Step> NotificationDelivery::takeNext() {
  const std::scoped_lock lock(mutex_);
  if (waiting_.empty()) return std::nullopt;
  Waiting next = std::move(waiting_.front());
  waiting_.pop_front();
  waitingBytes_ -= next.bytes;

  Step step;
  // The handler may run a modal alert: another block must deliver the rest meanwhile, in order.
  step.mustSchedule = !waiting_.empty() && !std::exchange(isScheduled_, true);
  step.hasNewRoom = isFull_ && waiting_.size() <= kWaitingMax / 2 && waitingBytes_ <= kWaitingBytesMax / 2;
  if (step.hasNewRoom) isFull_ = false;

  const auto registration = registrations_.find(next.identifier);
  if (registration != registrations_.end()) {
    step.handler = registration->second.handler;
    step.notification = std::move(next.notification);
  }
  return step;
}

}  // namespace karno::platform
