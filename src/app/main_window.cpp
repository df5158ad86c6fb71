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

void MainWindow::startUpNeedsToInstallFuse(StartupManager&, bool isUpgrade) {
  KarnoLog::manager().logInfo("Main: Need to install Fuse");
  platform::host().dispatch.mainOperationQueue().async(
      [self = shared_from_this(), isUpgrade] { self->showInstallFuseWindowWithUpgrading(isUpgrade); });
}

void MainWindow::showInstallFuseWindowWithUpgrading(bool upgrading) {
  continueButton().setTitle(KarnoLocalise::localise("CONTINUE"));
  cancelButton().setTitle(KarnoLocalise::localise("CANCEL"));
  continueMessage().setStringValue(KarnoLocalise::localise("MESSAGE_FUSE_INSTALL_CONTINUE_TO_SITE"));
  fuseMessage().setStringValue(
      KarnoLocalise::localise(upgrading ? "MESSAGE_FUSE_UPGRADE_REQUIRED" : "MESSAGE_FUSE_INSTALL_REQUIRED"));
  unregisterNotifications();
  registerNotifications();
  window_.makeKeyAndOrderFront();
  platform::host().application.activateIgnoringOtherApps();
}

void MainWindow::continueToInstallFusePressed() {
  KarnoLog::manager().logInfo("Main: User pressed continue to install Fuse");
  window_.close();
  StartupManager::instance().fuseNeedsInstalling();
}

void MainWindow::cancelInstallFusePressed() {
  KarnoLog::manager().logInfo("Main: User pressed cancel - not installing Fuse");
  window_.close();
  KarnoSparkleManager::instance().resetSparkle();
  AppDelegate::terminateWithReason("User cancelled install of Fuse");
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
