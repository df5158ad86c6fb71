#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "app/startup_interface.h"
#include "platform/tasks.h"
#include "util/error.h"

namespace karno {

// Checks whether this machine can run the chosen build of the embedded application, starts it and watches for
// its end. Reports every outcome to its delegate, which it holds weakly.
class StartupManager {
 public:
  using LaunchCompletion = std::function<void(bool success, const std::optional<Error>& error)>;

  static StartupManager& instance();

  // Set once on the main thread before checkSystem().
  void setDelegate(std::weak_ptr<StartupInterface> delegate) { delegate_ = std::move(delegate); }

  // For the File Provider build on macOS 12.3 or later the delegate is told on the calling thread, before
  // this returns; otherwise the answer comes later from a global queue.
  void checkSystem();

  // Launches the embedded application from a global queue. A success is told to the delegate, then the
  // updater is started.
  void launchKarno();

  // Launches the embedded application on the calling thread and calls the completion once before returning.
  // The child's single argument is "--parent N" in one word, N being the launcher's process identifier.
  void launchKarnoWithCompletion(const LaunchCompletion& completion);

  // True while a planned restart is under way: the end of the child is then expected. Any thread.
  bool restartingEmbeddedKarnoApp() const { return restartingEmbeddedKarnoApp_; }
  void setRestartingEmbeddedKarnoApp(bool restarting) { restartingEmbeddedKarnoApp_ = restarting; }

  // The last launched child; -1 after a launch that failed, 0 before the first.
  std::int32_t embeddedKarnoProcessIdentifier() const { return embeddedKarnoProcessIdentifier_; }

 private:
  void checkSystemForFuse();
  void childDidTerminate(const platform::TaskEnd& end);
  std::shared_ptr<StartupInterface> delegate() const { return delegate_.lock(); }

  std::weak_ptr<StartupInterface> delegate_;
  std::atomic<bool> restartingEmbeddedKarnoApp_{false};
  std::atomic<std::int32_t> embeddedKarnoProcessIdentifier_{0};
};

}  // namespace karno
