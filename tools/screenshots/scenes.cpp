#include "scenes.h"

#include <fmt/format.h>

#include "app/main_window.h"
#include "app/progress_window_controller.h"
#include "app/startup_manager.h"
#include "ipc/karno_wrappper_notifier_listener.h"
#include "localise/karno_localise.h"
#include "move/move_alerts.h"
#include "platform/platform.h"
#include "update_scenes.h"

namespace karno::screenshots {
namespace {

// Lives as long as the process, like the launcher's.
const std::shared_ptr<MainWindow>& mainWindow() {
  static const auto window = std::make_shared<MainWindow>(platform::host().windows.promptWindow());
  return window;
}

void showProgress() {
  static const std::shared_ptr<ProgressWindowController> controller = ProgressWindowController::make();
  controller->setTitle("Karno");
  controller->setMessage(KarnoLocalise::localise("MESSAGE_FUSE_INSTALL_REQUIRED"));
  controller->showWindow();
  controller->setProgress(42);
}

// The launcher comes to this one only after the network has told of a newer macFUSE.
void showUpdateAlert() {
  platform::host().alerts.runModal(
      {.style = platform::AlertStyle::Informational,
       .messageText = KarnoLocalise::localise("UPDATE"),
       .informativeText = fmt::format("{}\n\n{}", KarnoLocalise::localise("MESSAGE_FUSE_UPGRADE_REQUIRED"),
                                      KarnoLocalise::localise("WHAT_WOULD_YOU_LIKE_TO_DO")),
       .buttons = {{.title = KarnoLocalise::localise("CONTINUE"), .keyEquivalent = ""},
                   {.title = KarnoLocalise::localise("NOT_NOW"), .keyEquivalent = "\033"}}});
}

std::vector<Scene> withUpdateScenes(std::vector<Scene> scenes) {
  const std::vector<Scene> more = updateScenes();
  scenes.insert(scenes.end(), more.begin(), more.end());
  return scenes;
}

std::string downloadedBundle() {
  return platform::host().files.searchPath(platform::UserFolder::Downloads).front() + "/Karno.app";
}

}  // namespace

const std::vector<Scene>& allScenes() {
  static const std::vector<Scene> scenes = withUpdateScenes({
      {"prompt-install", [] { mainWindow()->showInstallFuseWindowWithUpgrading(false); }},
      {"prompt-upgrade", [] { mainWindow()->showInstallFuseWindowWithUpgrading(true); }},
      {"progress", showProgress},
      {"alert-crash",
       [] { KarnoWrappperNotifierListener::manager().processAbnormalTermination("a picture"); }},
      {"alert-drive-mount-failed",
       [] { mainWindow()->startUpDidFailToLaunchKarno(StartupManager::instance()); }},
      {"alert-fuse-install", [] { StartupManager::instance().informUserToDownloadFuse(); }},
      {"alert-fuse-continue", [] { StartupManager::instance().continueAfterManualInstall(); }},
      {"alert-fuse-update", showUpdateAlert},
      {"alert-move", [] { userWantsMove(downloadedBundle(), false); }},
      {"alert-move-password", [] { userWantsMove(downloadedBundle(), true); }},
      {"alert-move-failed", showMoveFailure},
  });
  return scenes;
}

}  // namespace karno::screenshots
