#include "app/startup_manager.h"
#include "localise/karno_localise.h"
#include "log/karno_log.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "system/fuse_sites.h"

namespace karno {
namespace {

constexpr double kPauseBeforeAlert = 2.0;  // seconds, so that the web site is in front first
constexpr double kFusePollInterval = 2.0;  // seconds

platform::Queue& downloadWaitQueue() {
  static platform::NeverDestroyed<std::shared_ptr<platform::Queue>> queue(
      platform::host().dispatch.makeSerialQueue("it.vantul.KarnoWrapper.download-wait"));
  return **queue;
}

platform::Queue& installWaitQueue() {
  static platform::NeverDestroyed<std::shared_ptr<platform::Queue>> queue(
      platform::host().dispatch.makeSerialQueue("it.vantul.KarnoWrapper.fuse.install.wait"));
  return **queue;
}

void tellUserToInstall() {
  platform::host().alerts.runModal({
      .style = platform::AlertStyle::Critical,
      .messageText = KarnoLocalise::localise("MESSAGE_FUSE_INSTALL_REQUIRED"),
      .informativeText = KarnoLocalise::localise("MESSAGE_FUSE_INSTALL"),
      .buttons = {{.title = KarnoLocalise::localise("OK"), .keyEquivalent = ""}},
  });
}

long askWhetherInstalled() {
  return platform::host().alerts.runModal({
      .style = platform::AlertStyle::Critical,
      .messageText = KarnoLocalise::localise("MESSAGE_FUSE_INSTALL_REQUIRED"),
      .informativeText = KarnoLocalise::localise("MESSAGE_FUSE_INSTALL_CONTINUE"),
      .buttons = {{.title = KarnoLocalise::localise("CONTINUE"), .keyEquivalent = ""},
                  {.title = KarnoLocalise::localise("CANCEL"), .keyEquivalent = "\033"}},
  });
}

}  // namespace

void StartupManager::fuseMeetsRequirements(FuseManager&) {
  KarnoLog::manager().logInfo("Startup[FUSE] Fuse is installed");
  if (const auto target = delegate()) target->startUpDidCheckSystemSuccessfully(*this);
}

void StartupManager::fuseNeedsToBeInstalled(FuseManager&, bool isUpgrade) {
  if (const auto target = delegate()) target->startUpNeedsToInstallFuse(*this, isUpgrade);
}

void StartupManager::fuseNeedsInstalling() {
  platform::host().dispatch.globalQueue(platform::QueuePriority::Default).async([this] {
    informUserToDownloadFuse();
  });
}

void StartupManager::informUserToDownloadFuse() {
  platform::Queue& queue = downloadWaitQueue();
  platform::host().workspace.openURL(fuseDownloadSite());
  KarnoLog::manager().logInfo("Startup[FUSE] Showing macFuse website and asking user to install Fuse");
  queue.async([this] {
    const auto activity = platform::host().dispatch.beginActivity("Waiting for macFUSE");
    platform::host().dispatch.sleep(kPauseBeforeAlert);
    platform::host().dispatch.mainQueue().async(tellUserToInstall);
    waitForFuseToBeInstalled();
  });
}

void StartupManager::waitForFuseToBeInstalled() {
  KarnoLog::manager().logInfo("Startup[FUSE] Waiting for Fuse to install");
  do {
    platform::host().dispatch.sleep(kFusePollInterval);
  } while (!FuseManager::instance().checkFuseIsInstalledInSystem(true));
  KarnoLog::manager().logInfo("Startup[FUSE] Fuse is installed");
  if (const auto target = delegate()) target->startUpDidCheckSystemSuccessfully(*this);
}

void StartupManager::continueAfterManualInstall() {
  installWaitQueue().async([this] {
    platform::host().dispatch.sleep(kPauseBeforeAlert);
    platform::host().dispatch.mainQueue().async([this] {
      const long answer = askWhetherInstalled();
      if (answer == platform::kAlertSecondButtonReturn) {
        if (const auto target = delegate()) target->startUpDidFailToSetupSystem(*this);
      } else if (answer == platform::kAlertFirstButtonReturn) {
        KarnoLog::manager().logInfo("Startup[FUSE] User has continued after installing Fuse");
        checkSystem();
      }
    });
  });
}

std::shared_ptr<ProgressWindowController> StartupManager::progressController() const {
  const std::lock_guard lock(progressLock_);
  return progressController_;
}

void StartupManager::setProgressController(std::shared_ptr<ProgressWindowController> controller) {
  const std::lock_guard lock(progressLock_);
  progressController_.swap(controller);
}

void StartupManager::hideProgress() {
  platform::host().dispatch.mainQueue().async([this] {
    if (const auto controller = progressController()) controller->close();
    setProgressController(nullptr);
  });
}

void StartupManager::progressWindowControllerUserPressedCancel(ProgressWindowController&) {
  setCancelled(true);
  hideProgress();
  KarnoLog::manager().logWarn("Startup[FUSE] User decided not to install fuse");
  if (const auto target = delegate()) target->startUpDidFailToSetupSystem(*this);
}

}  // namespace karno
