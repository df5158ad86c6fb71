#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "app/progress_window_controller.h"
#include "app/startup_interface.h"
#include "platform/tasks.h"
#include "system/fuse_manager.h"
#include "util/error.h"

namespace karno {

// Checks whether this machine can run the chosen build of the embedded application, gets macFUSE installed
// when that build needs it, starts the build and watches for its end. Reports every outcome to its delegate,
// which it holds weakly.
class StartupManager : public FuseManagerDelegate,
                       public ProgressWindowDelegate,
                       public std::enable_shared_from_this<StartupManager> {
 public:
  using LaunchCompletion = std::function<void(bool success, const std::optional<Error>& error)>;

  static StartupManager& instance();

  // Set once on the main thread before checkSystem().
  void setDelegate(std::weak_ptr<StartupInterface> delegate) { delegate_ = std::move(delegate); }
  std::shared_ptr<StartupInterface> delegate() const { return delegate_.lock(); }

  // For the File Provider build on macOS 12.3 or later the delegate is told on the calling thread, before
  // this returns; otherwise the answer comes later from a global queue.
  void checkSystem();

  // Begins the macFUSE download flow on a global queue. The user has agreed.
  void fuseNeedsInstalling();

  // Opens the macFUSE web site, tells the user two seconds later what to do there, and waits on a queue of
  // its own until macFUSE is there.
  void informUserToDownloadFuse();

  // Polls every two seconds until a good macFUSE is installed, without end; then the delegate is told. Blocks
  // the calling thread.
  void waitForFuseToBeInstalled();

  // Asks the user after two seconds whether macFUSE has been installed by hand, and checks the system again
  // if so.
  void continueAfterManualInstall();

  // Closes the progress window, if there is one, on the main thread.
  void hideProgress();

  void fuseMeetsRequirements(FuseManager& manager) override;
  void fuseNeedsToBeInstalled(FuseManager& manager, bool isUpgrade) override;
  void progressWindowControllerUserPressedCancel(ProgressWindowController& controller) override;

  // Whether the user has cancelled in the progress window; never false again afterwards.
  bool cancelled() const { return cancelled_; }
  void setCancelled(bool cancelled) { cancelled_ = cancelled; }

  // The progress window while one is shown. Any thread.
  std::shared_ptr<ProgressWindowController> progressController() const;
  void setProgressController(std::shared_ptr<ProgressWindowController> controller);

  // Launches the embedded application from a global queue. A success is told to the delegate, then the
  // updater is started.
  void launchKarno();

  // Launches the embedded application on the calling thread and calls the completion once before returning.
  // The child's single argument is "--parent N" in one word, N being the launcher's process identifier.
  void launchKarnoWithCompletion(const LaunchCompletion& completion);

  // Waits on a global queue at most five seconds for the embedded application to quit by itself, then
  // launches it again. The updater is not started anew.
  void restartKarno();

  // The same wait; then another instance of the launcher is opened, told which build to start, and this one
  // quits.
  void restartWrapper();  // with the build that runs now
  void restartWrapperForFuse();
  void restartWrapperForFileProvider();
  void restartWrapperForAppEmbeddedName(const std::string& name);

  // True while a planned restart is under way: the end of the child is then expected. Any thread.
  bool restartingEmbeddedKarnoApp() const { return restartingEmbeddedKarnoApp_; }
  void setRestartingEmbeddedKarnoApp(bool restarting) { restartingEmbeddedKarnoApp_ = restarting; }

  // The last launched child; -1 after a launch that failed, 0 before the first.
  std::int32_t embeddedKarnoProcessIdentifier() const { return embeddedKarnoProcessIdentifier_; }
  void setEmbeddedKarnoProcessIdentifier(std::int32_t identifier) {
    embeddedKarnoProcessIdentifier_ = identifier;
  }

 private:
  void childDidTerminate(const platform::TaskEnd& end);

  std::weak_ptr<StartupInterface> delegate_;
  std::atomic<bool> cancelled_{false};
  std::atomic<bool> restartingEmbeddedKarnoApp_{false};
  std::atomic<std::int32_t> embeddedKarnoProcessIdentifier_{0};
  mutable std::mutex progressLock_;  // guards progressController_
  std::shared_ptr<ProgressWindowController> progressController_;
};

}  // namespace karno
