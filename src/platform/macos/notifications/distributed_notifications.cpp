#include "platform/macos/notifications/distributed_notifications.h"

#include <utility>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/cocoa/runtime/values.h"
#include "platform/macos/foundation/guarded_answer.h"

namespace karno::platform {
namespace {

// NSNotificationSuspensionBehaviorDeliverImmediately. The application object suspends delivery to others
// while the application is not active, and the launcher hardly ever is.
constexpr objc::UInteger kDeliverImmediately = 4;

objc::Id center() { return objc::send(objc::classNamed("NSDistributedNotificationCenter"), "defaultCenter"); }

DistributedNotification read(objc::Id notification) {
  DistributedNotification content;
  content.name = objc::text(objc::send(notification, "name"));
  if (const objc::Id object = objc::send(notification, "object"); object != nullptr) {
    content.object = objc::text(object);
  }
  const std::optional<Value> userInfo = cocoa::valueOf(objc::send(notification, "userInfo"));
  if (const auto* dictionary = userInfo ? userInfo->get<Value::Dictionary>() : nullptr) {
    content.userInfo = *dictionary;
  }
  return content;
}

// One that raises must not keep the rest with the centre, which goes on sending to what it knows.
void leaveCenter(const objc::Object& target) {
  objc::guardedAndLogged("leaving distributed notifications",
                         [&target] { objc::send<void>(center(), "removeObserver:", target); });
}

}  // namespace

FoundationDistributedNotifications::~FoundationDistributedNotifications() {
  const objc::AutoreleasePool pool;
  for (const auto& registration : registrations_) leaveCenter(registration->callback->target());
}

void FoundationDistributedNotifications::addObserver(const void* observer, const std::string& name,
                                                     const std::string& object, Handler handler) {
  const objc::AutoreleasePool pool;
  destroyRemoved();
  auto registration = std::make_unique<Registration>();
  Registration& added = *registration;
  added.observer = observer;
  added.handler = std::make_shared<const Handler>(std::move(handler));
  added.callback = std::make_unique<cocoa::Callback>(
      [this, &added](objc::Id notification) { deliver(added, notification); });
  {
    const std::lock_guard lock(mutex_);
    registrations_.push_back(std::move(registration));
  }
  const objc::Sel action = cocoa::Callback::action();
  objc::guardedAndLogged("observing distributed notifications", [&] {
    objc::send<void>(center(),
                     "addObserver:selector:name:object:suspensionBehavior:", added.callback->target(), action,
                     objc::string(name), objc::string(object), kDeliverImmediately);
  });
}

void FoundationDistributedNotifications::removeObserver(const void* observer) {
  const objc::AutoreleasePool pool;
  std::vector<objc::Object> targets;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& registration : registrations_) {
      if (registration->observer == observer && std::exchange(registration->handler, nullptr) != nullptr) {
        targets.push_back(registration->callback->target());
      }
    }
  }
  for (const objc::Object& target : targets) leaveCenter(target);
  destroyRemoved();
}

bool FoundationDistributedNotifications::post(const DistributedNotification& notification) {
  const objc::AutoreleasePool pool;
  return guardedAnswer("posting a distributed notification", false, [&notification] {
    const objc::Id recipient = center();
    const objc::Object userInfo = cocoa::objectOf(Value(notification.userInfo));
    if (recipient == nullptr || !userInfo) return false;
    const objc::Object object = notification.object ? objc::string(*notification.object) : objc::Object();
    objc::send<void>(recipient, "postNotificationName:object:userInfo:deliverImmediately:",
                     objc::string(notification.name), object, userInfo, true);
    return true;
  });
}

void FoundationDistributedNotifications::deliver(const Registration& registration, objc::Id notification) {
  std::shared_ptr<const Handler> handler;
  {
    const std::lock_guard lock(mutex_);
    handler = registration.handler;
  }
  if (handler == nullptr) return;
  struct Running {
    explicit Running(int& count) : count_(count) { ++count_; }
    ~Running() { --count_; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    int& count_;
  } const running(handlersRunning_);
  (*handler)(read(notification));
}

// Their Objective-C side may only be let go where it is called: on the main thread.
void FoundationDistributedNotifications::destroyRemoved() {
  if (!cocoa::isMainThread() || handlersRunning_ > 0) return;
  const std::lock_guard lock(mutex_);
  std::erase_if(registrations_, [](const auto& registration) { return registration->handler == nullptr; });
}

}  // namespace karno::platform
