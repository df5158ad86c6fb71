#pragma once
#include <memory>
#include <string_view>

#include "move/karno_move_application_manager.h"
#include "platform/application.h"

namespace karno {

class MainWindow;

// The first of the launcher's own code to run, and the one place through which all of it quits.
class AppDelegate : public platform::ApplicationDelegate,
                    public KarnoMoveApplicationDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
 public:
  // The only way the launcher quits on purpose: logs the reason, flushes the log (five seconds at most), then
  // terminates the application on the main thread. Any thread; returns at once. Nothing guards against a
  // second call: it logs its own reason and terminates once more.
  static void terminateWithReason(std::string_view reason);

  // Held weakly: an outlet, set when the main interface is loaded.
  void setMainWindow(std::weak_ptr<MainWindow> mainWindow) { mainWindow_ = std::move(mainWindow); }
  std::shared_ptr<MainWindow> mainWindow() const { return mainWindow_.lock(); }

  void applicationDidFinishLaunching() override;
  void applicationWillTerminate() override;
  bool applicationShouldHandleReopen(bool hasVisibleWindows) override;

  // Starts the move check on a background-priority queue and returns.
  void moveApplicationIfNeeded();

  void moveApplicationNotNeeded(KarnoMoveApplicationManager& manager) override;
  void moveApplicationDidComplete(KarnoMoveApplicationManager& manager) override;
  void moveApplicationDidFail(KarnoMoveApplicationManager& manager, const Error& error) override;
  void moveApplicationUserDidCancel(KarnoMoveApplicationManager& manager) override;

 private:
  std::weak_ptr<MainWindow> mainWindow_;
};

}  // namespace karno
