#include "update/karno_sparkle_manager.h"

#include "log/karno_log.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"

namespace karno {

KarnoSparkleManager& KarnoSparkleManager::instance() {
  static platform::NeverDestroyed<KarnoSparkleManager> manager;
  return *manager;
}

void KarnoSparkleManager::start() { KarnoLog::manager().logInfo("Sparkle[START] Starting Up"); }

bool KarnoSparkleManager::isUpdateInProgress() const {
  const platform::Updater& updater = platform::host().updater;
  return updater.sessionInProgress() || !updater.canCheckForUpdates();
}

void KarnoSparkleManager::resetSparkle() {
  platform::UserDefaults& defaults = platform::host().userDefaults.standardUserDefaults();
  defaults.setBool(false, "SUHasLaunchedBefore");
  defaults.synchronize();
}

}  // namespace karno
