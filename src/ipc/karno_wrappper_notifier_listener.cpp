#include "ipc/karno_wrappper_notifier_listener.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>

#include "app/app_delegate.h"
#include "app/startup_manager.h"
#include "ipc/wrapper_protocol.h"
#include "localise/karno_localise.h"
#include "log/karno_log.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "update/karno_sparkle_manager.h"
#include "util/string_utils.h"

namespace karno {
namespace {

using platform::Value;

std::optional<Value> valueUnder(std::string_view key, const Value::Dictionary& userInfo) {
  const auto entry = userInfo.find(key);
  return entry == userInfo.end() ? std::nullopt : std::optional(entry->second);
}

bool updateInProgress() { return KarnoSparkleManager::instance().isUpdateInProgress(); }

void appIsTerminating() {
  if (updateInProgress()) {
    KarnoLog::manager().logInfo("Notify[LISTEN] Upgrade in progress - Karno.app has terminated.");
    return;
  }
  AppDelegate::terminateWithReason("Karno.app is terminated");
}

void appIsTerminatingAbnormally(const Value::Dictionary& userInfo) {
  if (updateInProgress()) {
    KarnoLog::manager().logInfo("Notify[LISTEN] Upgrade in progress - Karno has terminated abnormally.");
    return;
  }
  KarnoWrappperNotifierListener::manager().processAbnormalTermination(
      valueUnder(kWrapperReasonKey, userInfo));
}

void appNeedsRestart() {
  if (updateInProgress()) {
    KarnoLog::manager().logInfo("Notify[LISTEN] Upgrade in progress - Not restarting Karno.app.");
    return;
  }
  KarnoLog::manager().logInfo("Notify[LISTEN] Restarting Karno.app.");
  StartupManager::instance().restartKarno();
}

void checkForUpdates() {
  platform::host().application.activateIgnoringOtherApps();
  KarnoSparkleManager::instance().checkForUpdates();
}

using Action = std::function<void(const Value::Dictionary& userInfo)>;

// What each message makes the launcher do, in the order of kWrapperMessages. Only the messages by which the
// embedded application goes away ask whether an update is the reason.
const std::array<Action, kWrapperMessages.size()>& actions() {
  static platform::NeverDestroyed<const std::array<Action, kWrapperMessages.size()>> table(
      std::array<Action, kWrapperMessages.size()>{
          [](const auto&) { checkForUpdates(); },
          [](const auto&) { KarnoSparkleManager::instance().setCheckForUpdatesAutomatically(true); },
          [](const auto&) { KarnoSparkleManager::instance().setCheckForUpdatesAutomatically(false); },
          [](const auto&) { AppDelegate::terminateWithReason("User selected quit"); },
          [](const auto&) { appIsTerminating(); },
          appIsTerminatingAbnormally,
          [](const auto&) { appNeedsRestart(); },
          [](const auto&) { StartupManager::instance().restartWrapperForFuse(); },
          [](const auto&) { StartupManager::instance().restartWrapperForFileProvider(); },
          [](const auto&) { StartupManager::instance().restartWrapper(); },
      });
  return *table;
}

void askWhetherToRestart() {
  const long answer = platform::host().alerts.runModal({
      .style = platform::AlertStyle::Critical,
      .messageText = KarnoLocalise::localise("WHOOPS"),
      .informativeText = KarnoLocalise::localise("ERROR_FATAL"),
      .buttons = {{.title = KarnoLocalise::localise("YES"), .keyEquivalent = ""},
                  {.title = KarnoLocalise::localise("NO"), .keyEquivalent = "\033"}},
  });
  if (answer == platform::kAlertFirstButtonReturn) {
    KarnoLog::manager().logInfo(
        "Abnormal[TERMINATION] User elected to restart Karno after terminating abnormally.");
    StartupManager::instance().launchKarno();
    return;
  }
  KarnoLog::manager().logInfo(
      "Abnormal[TERMINATION] User elected not to restart Karno after terminating abnormally.");
  AppDelegate::terminateWithReason("User selected quit for crash");
}

}  // namespace

KarnoWrappperNotifierListener& KarnoWrappperNotifierListener::manager() {
  static platform::NeverDestroyed<KarnoWrappperNotifierListener> listener;
  return *listener;
}

void KarnoWrappperNotifierListener::registerForNotifications() {
  platform::host().distributedNotifications.addObserver(
      this, std::string(kWrapperNotificationName), std::string(kWrapperNotificationObject),
      [this](const platform::DistributedNotification& notification) { receivedNotification(notification); });
}

void KarnoWrappperNotifierListener::unregisterForNotifications() {
  platform::host().distributedNotifications.removeObserver(this);
}

void KarnoWrappperNotifierListener::receivedNotification(
    const platform::DistributedNotification& notification) {
  KarnoLog& log = KarnoLog::manager();
  const std::optional<Value> message = valueUnder(kWrapperMessageKey, notification.userInfo);
  log.logInfo(fmt::format("Notify[LISTEN] Received '{}'", descriptionOrNull(message)));

  const std::string* const text = message ? message->get<std::string>() : nullptr;
  const auto known = std::find_if(kWrapperMessages.begin(), kWrapperMessages.end(),
                                  [&](std::string_view one) { return text != nullptr && *text == one; });
  if (known == kWrapperMessages.end()) {
    log.logWarn(
        fmt::format("Notify[LISTEN] Received an unknown notification '{}'", descriptionOrNull(message)));
    return;
  }
  actions().at(static_cast<std::size_t>(known - kWrapperMessages.begin()))(notification.userInfo);
}

void KarnoWrappperNotifierListener::processAbnormalTermination(const std::optional<Value>& reason) {
  KarnoLog::manager().logError(fmt::format(
      "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason={})", descriptionOrNull(reason)));
  platform::host().dispatch.mainOperationQueue().async(askWhetherToRestart);
}

}  // namespace karno
