#include "app/startup_manager.h"

#include "app/karno_embedded_app.h"
#include "log/karno_log.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"

namespace karno {

StartupManager& StartupManager::instance() {
  static platform::NeverDestroyed<std::shared_ptr<StartupManager>> manager(
      std::make_shared<StartupManager>());
  return **manager;
}

// A File Provider choice on a system that is too old only brings in the FUSE check; the build that was chosen
// is the one that is launched all the same.
void StartupManager::checkSystem() {
  KarnoLog& log = KarnoLog::manager();
  if (KarnoEmbeddedApp::manager().useFileProvider()) {
    log.logInfo("Startup[CHECK] Checking system for FileProvider...");
    if (platform::host().systemVersion.isAtLeast(12, 3, 0)) {
      log.logInfo("Startup[CHECK] Using FileProvider");
      if (const auto target = delegate()) target->startUpDidCheckSystemSuccessfully(*this);
      return;
    }
    log.logWarn("Startup[CHECK] *** Cannot *** use FileProvider (O/S version < 12.3). Failing over to Fuse.");
  }
  log.logInfo("Startup[CHECK] Checking system for Fuse...");
  platform::host().dispatch.globalQueue(platform::QueuePriority::Default).async([this] {
    FuseManager& fuse = FuseManager::instance();
    fuse.setDelegate(weak_from_this());
    fuse.checkSystemMeetsRequirements();
  });
}

}  // namespace karno
