#pragma once
#include <memory>

#include "util/error.h"

namespace karno {

class KarnoMoveApplicationManager;

// How a move of the launcher's bundle into the Applications folder ended. Exactly one call per check, on
// whatever thread the outcome is known on.
class KarnoMoveApplicationDelegate {
 public:
  virtual ~KarnoMoveApplicationDelegate() = default;
  virtual void moveApplicationNotNeeded(KarnoMoveApplicationManager& manager) = 0;
  virtual void moveApplicationDidComplete(KarnoMoveApplicationManager& manager) = 0;
  virtual void moveApplicationDidFail(KarnoMoveApplicationManager& manager, const Error& error) = 0;
  virtual void moveApplicationUserDidCancel(KarnoMoveApplicationManager& manager) = 0;
};

// Decides whether the launcher must move into the Applications folder. It cannot move the bundle yet, so it
// always answers that no move is needed. Holds its delegate weakly.
class KarnoMoveApplicationManager {
 public:
  static KarnoMoveApplicationManager& instance();

  void setDelegate(std::weak_ptr<KarnoMoveApplicationDelegate> delegate) { delegate_ = std::move(delegate); }

  bool appNeedsMoving() const { return false; }

  // Any thread; "not needed" is answered on the calling thread before this returns.
  void moveApplicationIfRequired();

 private:
  std::weak_ptr<KarnoMoveApplicationDelegate> delegate_;
};

}  // namespace karno
