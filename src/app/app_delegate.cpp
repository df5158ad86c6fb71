#include "app/app_delegate.h"

#include <fmt/format.h>

#include "app/main_window.h"
#include "app/startup_manager.h"
#include "ipc/karno_wrappper_notifier_listener.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "update/karno_sparkle_manager.h"

namespace karno {

void AppDelegate::terminateWithReason(std::string_view reason) {
  KarnoLog& log = KarnoLog::manager();
  log.logInfo(fmt::format("AppDelegate[TERMINATE] Reason: {}", reason));
  log.flushWithCompletion([] {
    platform::host().dispatch.mainOperationQueue().async([] { platform::host().application.terminate(); });
  });
}

void AppDelegate::applicationDidFinishLaunching() {
  KarnoLog::manager().start();
  KarnoWrappperNotifierListener::manager().start();
  platform::host().application.activateIgnoringOtherApps();
  moveApplicationIfNeeded();
}

void AppDelegate::applicationWillTerminate() {
  KarnoLog::manager().logInfo("AppDelegate:: Terminating");
  KarnoWrappperNotifierListener::manager().stop();
}

// Who opens the launcher once more wants to see something: its own window where it shows one, else the
// client.
bool AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
  if (hasVisibleWindows) return true;
  const std::int32_t client = StartupManager::instance().embeddedKarnoProcessIdentifier();
  if (client > 0) platform::host().workspace.activateApplication(client);
  return false;
}

void AppDelegate::moveApplicationIfNeeded() {
  KarnoLog::manager().logInfo("AppDelegate[MOVE] Check whether app needs to be moved");
  platform::host()
      .dispatch.globalQueue(platform::QueuePriority::Background)
      .async([self = shared_from_this()] {
        KarnoMoveApplicationManager& mover = KarnoMoveApplicationManager::instance();
        mover.setDelegate(self);
        mover.moveApplicationIfRequired();
      });
}

void AppDelegate::moveApplicationNotNeeded(KarnoMoveApplicationManager&) {
  KarnoLog::manager().logInfo("AppDelegate[MOVE] Karno does not need to be moved. Continuing...");
  platform::host().dispatch.mainOperationQueue().async([self = shared_from_this()] {
    if (const auto window = self->mainWindow()) window->startUp();
  });
}

void AppDelegate::moveApplicationDidComplete(KarnoMoveApplicationManager&) {
  KarnoLog::manager().logInfo("AppDelegate[MOVE] Karno has been moved and will be restarted. Quitting.");
  KarnoSparkleManager::instance().resetSparkle();
  terminateWithReason("Karno was moved to /Applications");
}

// The two reasons below keep their grammar slip and their lower-case start: they are looked for as they
// stand.
void AppDelegate::moveApplicationDidFail(KarnoMoveApplicationManager&, const Error& error) {
  KarnoLog::manager().logError(
      fmt::format("AppDelegate[MOVE] Failed to move Karno. Error={}", error.localizedDescription()));
  KarnoSparkleManager::instance().resetSparkle();
  terminateWithReason("Karno failed to moved to /Applications");
}

void AppDelegate::moveApplicationUserDidCancel(KarnoMoveApplicationManager&) {
  KarnoLog::manager().logWarn("AppDelegate[MOVE] User cancelled the move operation - quitting");
  KarnoSparkleManager::instance().resetSparkle();
  terminateWithReason("user cancelled move to /Applications");
}

}  // namespace karno
