#include "app/main_window.h"

#include "app/app_delegate.h"
#include "app/startup_manager.h"
#include "localise/karno_localise.h"
#include "log/karno_log.h"
#include "move/karno_move_application_manager.h"
#include "platform/platform.h"
#include "update/karno_sparkle_manager.h"

namespace karno {
namespace {

void showLaunchFailure() {
  platform::host().alerts.runModal({
      .style = platform::AlertStyle::Critical,
      .messageText = "Karno",
      .informativeText = KarnoLocalise::localise("DRIVE_MOUNT_FAILED"),
      .buttons = {{.title = KarnoLocalise::localise("OK"), .keyEquivalent = ""}},
  });
}

}  // namespace

void MainWindow::startUp() {
  registerNotifications();
  StartupManager& manager = StartupManager::instance();
  manager.setDelegate(weak_from_this());
  manager.checkSystem();
}

void MainWindow::registerNotifications() {
  window_.addWillCloseObserver([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->onWindowClosed();
  });
}

void MainWindow::unregisterNotifications() { window_.removeWillCloseObservers(); }

void MainWindow::onWindowClosed() {
  unregisterNotifications();
  static_cast<void>(KarnoMoveApplicationManager::instance().appNeedsMoving());
}

void MainWindow::startUpDidCheckSystemSuccessfully(StartupManager& manager) {
  KarnoLog::manager().logInfo("Main: System is okay - launching Karno");
  manager.launchKarno();
}

void MainWindow::startUpDidLaunchKarnoSuccessfully(StartupManager&) {
  KarnoLog::manager().logInfo("Main: Started Karno successfully");
  platform::host().dispatch.mainQueue().async([self = shared_from_this()] { self->window_.close(); });
}

void MainWindow::startupAppShouldTerminate(StartupManager&) {
  KarnoLog::manager().logInfo("Main: App should terminate");
  AppDelegate::terminateWithReason("App should terminate");
}

// The prompt that leads to the macFUSE web site is not built yet, so the start ends as if it had been
// refused.
void MainWindow::startUpNeedsToInstallFuse(StartupManager& manager, bool) {
  KarnoLog::manager().logInfo("Main: Need to install Fuse");
  startUpDidFailToSetupSystem(manager);
}

void MainWindow::startUpDidFailToSetupSystem(StartupManager& manager) {
  KarnoLog::manager().logError("Main: Failed to setup system");
  KarnoSparkleManager::instance().resetSparkle();
  startUpDidFailToLaunchKarno(manager);
}

void MainWindow::startUpDidFailToLaunchKarno(StartupManager&) {
  KarnoLog::manager().logError("Main: Failed to start Karno");
  platform::host().dispatch.mainOperationQueue().async([] {
    showLaunchFailure();
    AppDelegate::terminateWithReason("Failed to start Karno.app");
  });
}

}  // namespace karno
