#pragma once
#include <atomic>
#include <memory>

#include "util/error.h"

namespace karno {

class KarnoMoveApplicationManager;

// How a move of the launcher's bundle into the Applications folder ended. That none is needed is told on the
// thread that asked, the rest on the main thread.
class KarnoMoveApplicationDelegate {
 public:
  virtual ~KarnoMoveApplicationDelegate() = default;
  virtual void moveApplicationNotNeeded(KarnoMoveApplicationManager& manager) = 0;

  // The copy is in place and will be opened when this process has ended, or a copy that runs already was
  // brought to the front.
  virtual void moveApplicationDidComplete(KarnoMoveApplicationManager& manager) = 0;
  virtual void moveApplicationDidFail(KarnoMoveApplicationManager& manager, const Error& error) = 0;
  virtual void moveApplicationUserDidCancel(KarnoMoveApplicationManager& manager) = 0;
};

// The launcher's entry to the move: decides whether one is needed, runs it on the main thread and tells the
// delegate, held weakly, how it ended.
class KarnoMoveApplicationManager {
 public:
  static KarnoMoveApplicationManager& instance();

  void setDelegate(std::weak_ptr<KarnoMoveApplicationDelegate> delegate) { delegate_ = std::move(delegate); }
  std::shared_ptr<KarnoMoveApplicationDelegate> delegate() const { return delegate_.lock(); }

  // True while a move waits for the main thread, else whether one is needed now. What was set is kept and
  // never looked at.
  bool appNeedsMoving() const;
  void setAppNeedsMoving(bool needsMoving) { appNeedsMoving_ = needsMoving; }

  // True from the decision to move until the main thread takes it up.
  bool moveInProgress() const { return moveInProgress_; }
  void setMoveInProgress(bool inProgress) { moveInProgress_ = inProgress; }

  // Any thread. "Not needed" is told before this returns. A call while a move waits for the main thread is
  // refused with a warning, and the delegate hears nothing of it.
  void moveApplicationIfRequired();

 private:
  void moveNow();

  std::atomic<bool> appNeedsMoving_{false};
  std::atomic<bool> moveInProgress_{false};
  std::weak_ptr<KarnoMoveApplicationDelegate> delegate_;
};

}  // namespace karno
