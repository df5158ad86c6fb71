#include "platform/linux/notifications/bus_poster.h"

#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>

#include <cerrno>
#include <chrono>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/linux/notifications/bus_connection.h"
#include "platform/linux/notifications/bus_values.h"
#include "platform/linux/notifications/notification_signal.h"

namespace karno::platform {
namespace {

constexpr std::chrono::seconds kFlushMax(5);

struct BusStandsStill : std::runtime_error {
  BusStandsStill() : std::runtime_error("the bus takes no more") {}
};

}  // namespace

bool BusPoster::post(const DistributedNotification& notification) {
  const std::optional<BusDictionary> userInfo = busDictionaryFromValues(notification.userInfo);
  if (!userInfo || !isBusText(notification.name) || !isBusText(notification.object.value_or("")))
    return false;

  const Attempt attempt = attemptToPost(notification, *userInfo);
  if (attempt.isNews) {
    notices_.warn("Notifications: failed to post on the session bus. Reason: " + *attempt.failure);
  }
  return !attempt.failure;
}

// A connection from before may have lost its bus: then the second try makes a new one.
BusPoster::Attempt BusPoster::attemptToPost(const DistributedNotification& notification,
                                            const BusDictionary& userInfo) {
  const std::scoped_lock lock(mutex_);
  Attempt attempt;
  for (int tries = connection_ == nullptr ? 1 : 2; tries > 0; --tries) {
    try {
      send(notification, userInfo);
      hasReportedFailure_ = false;
      return {};
    } catch (const BusStandsStill& failure) {
      attempt.failure = failure.what();
      tries = 0;
    } catch (const std::exception& failure) {
      attempt.failure = failure.what();
    }
    abandon(connection_);
  }
  attempt.isNews = !std::exchange(hasReportedFailure_, true);
  return attempt;
}

void BusPoster::send(const DistributedNotification& notification, const BusDictionary& userInfo) {
  if (connection_ == nullptr) connection_ = sdbus::createSessionBusConnection();
  const std::unique_ptr<sdbus::IObject> centre = sdbus::createObject(*connection_, kNotificationPath);
  sdbus::Signal signal = centre->createSignal(kNotificationInterface, kNotificationMember);
  signal << notification.name << notification.object.value_or("") << userInfo;
  centre->emitSignal(signal);
  flush();
}

void BusPoster::flush() {
  const auto giveUpAt = std::chrono::steady_clock::now() + kFlushMax;
  while (true) {
    // Takes in what the bus has sent us as well, so that it cannot pile up there.
    while (connection_->processPendingRequest()) {
    }
    const sdbus::IConnection::PollData wanted = connection_->getEventLoopPollData();
    if ((wanted.events & POLLOUT) == 0) return;

    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(giveUpAt - std::chrono::steady_clock::now());
    if (left.count() <= 0) throw BusStandsStill();
    pollfd item = {.fd = wanted.fd, .events = wanted.events, .revents = 0};
    if (::poll(&item, 1, static_cast<int>(left.count())) < 0 && errno != EINTR) {
      throw sdbus::createError(errno, "poll failed");
    }
  }
}

}  // namespace karno::platform
