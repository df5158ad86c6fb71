#include "scenes.h"

#include "platform/platform.h"

namespace karno::screenshots {
namespace {

using platform::Alert;
using platform::AlertStyle;
using platform::host;

void showPrompt(const Table& table, const std::string& messageToken) {
  platform::PromptWindow& prompt = host().windows.promptWindow();
  prompt.continueButton().setTitle(table.text("CONTINUE"));
  prompt.cancelButton().setTitle(table.text("CANCEL"));
  prompt.continueMessage().setStringValue(table.text("MESSAGE_FUSE_INSTALL_CONTINUE_TO_SITE"));
  prompt.fuseMessage().setStringValue(table.text(messageToken));
  prompt.makeKeyAndOrderFront();
}

void showProgress(const Table& table) {
  static const std::unique_ptr<platform::ProgressWindow> window = host().windows.makeProgressWindow();
  window->setTitle("Karno");
  window->textField().setStringValue(table.text("MESSAGE_FUSE_INSTALL_REQUIRED"));
  window->cancelButton().setTitle(table.text("CANCEL"));
  window->progressIndicator().setDoubleValue(42);
  window->show();
}

void showAlert(const Alert& alert) { host().alerts.runModal(alert); }

void showMountFailure(const Table& table) {
  showAlert({.style = AlertStyle::Critical,
             .messageText = "Karno",
             .informativeText = table.text("DRIVE_MOUNT_FAILED"),
             .buttons = {{table.text("OK"), ""}}});
}

void showInstallAlert(const Table& table) {
  showAlert({.style = AlertStyle::Critical,
             .messageText = table.text("MESSAGE_FUSE_INSTALL_REQUIRED"),
             .informativeText = table.text("MESSAGE_FUSE_INSTALL"),
             .buttons = {{table.text("OK"), ""}}});
}

void showContinueAlert(const Table& table) {
  showAlert({.style = AlertStyle::Critical,
             .messageText = table.text("MESSAGE_FUSE_INSTALL_REQUIRED"),
             .informativeText = table.text("MESSAGE_FUSE_INSTALL_CONTINUE"),
             .buttons = {{table.text("CONTINUE"), ""}, {table.text("CANCEL"), ""}}});
}

void showUpdateAlert(const Table& table) {
  showAlert({.style = AlertStyle::Informational,
             .messageText = table.text("UPDATE"),
             .informativeText = table.text("MESSAGE_FUSE_UPGRADE_REQUIRED") + "\n\n" +
                                table.text("WHAT_WOULD_YOU_LIKE_TO_DO"),
             .buttons = {{table.text("CONTINUE"), ""}, {table.text("NOT_NOW"), ""}}});
}

}  // namespace

const std::vector<Scene>& allScenes() {
  static const std::vector<Scene> scenes = {
      {"prompt-install", [](const Table& table) { showPrompt(table, "MESSAGE_FUSE_INSTALL_REQUIRED"); }},
      {"prompt-upgrade", [](const Table& table) { showPrompt(table, "MESSAGE_FUSE_UPGRADE_REQUIRED"); }},
      {"progress", showProgress},
      {"alert-drive-mount-failed", showMountFailure},
      {"alert-fuse-install", showInstallAlert},
      {"alert-fuse-continue", showContinueAlert},
      {"alert-fuse-update", showUpdateAlert},
  };
  return scenes;
}

}  // namespace karno::screenshots
