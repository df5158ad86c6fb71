#include "ipc/karno_wrappper_notifier_listener.h"

#include <fmt/format.h>

#include <algorithm>

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

bool isWrapperMessage(std::string_view message) {
  return std::find(kWrapperMessages.begin(), kWrapperMessages.end(), message) != kWrapperMessages.end();
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

void askWhetherToRestart() {
  const long answer = platform::host().alerts.runModal({
      .style = platform::AlertStyle::Critical,
      .messageText = KarnoLocalise::localise("WHOOPS"),
      .informativeText = KarnoLocalise::localise("ERROR_FATAL"),
      .buttons = {{.title = KarnoLocalise::localise("YES"), .keyEquivalent = ""},
                  {.title = KarnoLocalise::localise("NO"), .keyEquivalent = ""}},
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
  if (text != nullptr && *text == kUserSelectedQuit) {
    AppDelegate::terminateWithReason("User selected quit");
  } else if (text != nullptr && *text == kAppIsTerminating) {
    appIsTerminating();
  } else if (text != nullptr && *text == kAppIsTerminatingAbnormally) {
    appIsTerminatingAbnormally(notification.userInfo);
  } else if (text != nullptr && isWrapperMessage(*text)) {
    log.logWarn(fmt::format("Notify[LISTEN] This version of the launcher cannot act on '{}'", *text));
  } else {
    log.logWarn(
        fmt::format("Notify[LISTEN] Received an unknown notification '{}'", descriptionOrNull(message)));
  }
}

void KarnoWrappperNotifierListener::processAbnormalTermination(const std::optional<Value>& reason) {
  KarnoLog::manager().logError(fmt::format(
      "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason={})", descriptionOrNull(reason)));
  platform::host().dispatch.mainOperationQueue().async(askWhetherToRestart);
}

}  // namespace karno
