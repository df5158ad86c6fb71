#include "move/karno_move_application_manager.h"

#include "platform/never_destroyed.h"

namespace karno {

KarnoMoveApplicationManager& KarnoMoveApplicationManager::instance() {
  static platform::NeverDestroyed<KarnoMoveApplicationManager> manager;
  return *manager;
}

void KarnoMoveApplicationManager::moveApplicationIfRequired() {
  if (appNeedsMoving()) return;
  if (const auto delegate = delegate_.lock()) delegate->moveApplicationNotNeeded(*this);
}

}  // namespace karno
