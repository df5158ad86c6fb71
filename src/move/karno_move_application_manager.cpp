#include "move/karno_move_application_manager.h"

#include "log/karno_log.h"
#include "move/applications_folder.h"
#include "move/move_application.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"

namespace karno {

KarnoMoveApplicationManager& KarnoMoveApplicationManager::instance() {
  static platform::NeverDestroyed<KarnoMoveApplicationManager> manager;
  return *manager;
}

bool KarnoMoveApplicationManager::appNeedsMoving() const {
  return moveInProgress_ || applicationNeedsMoving(false);
}

void KarnoMoveApplicationManager::moveApplicationIfRequired() {
  if (moveInProgress_) {
    KarnoLog::manager().logWarn(
        "KarnoMoveApplicationManager:: Bailing out as we're already moving the application");
    return;
  }
  if (!appNeedsMoving()) {
    if (const auto target = delegate()) target->moveApplicationNotNeeded(*this);
    return;
  }
  KarnoLog::manager().logInfo("KarnoMoveApplicationManager:: Alerting user that the app needs moving.");
  setMoveInProgress(true);
  platform::host().dispatch.mainQueue().async([this] { moveNow(); });
}

// The flag falls before the routine runs: it guards no more than the wait for the main thread.
void KarnoMoveApplicationManager::moveNow() {
  setMoveInProgress(false);
  const std::optional<Error> error = moveApplicationToApplicationsFolder(false);
  const auto target = delegate();
  if (!target) return;
  if (!error) {
    target->moveApplicationDidComplete(*this);
  } else if (error->code() == kMoveCancelledCode) {
    target->moveApplicationUserDidCancel(*this);
  } else {
    target->moveApplicationDidFail(*this, *error);
  }
}

}  // namespace karno
