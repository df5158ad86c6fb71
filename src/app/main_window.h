#pragma once
#include <memory>

#include "app/startup_interface.h"
#include "platform/windows.h"

namespace karno {

// The launcher's one window and the delegate of the startup manager: turns each outcome of the start-up into
// the next step and is where every failure of it ends. Its own operations are for the main thread; the
// delegate's come on any.
class MainWindow : public StartupInterface, public std::enable_shared_from_this<MainWindow> {
 public:
  // The native window lives as long as the process.
  explicit MainWindow(platform::PromptWindow& window) : window_(window) {}

  void startUp();

  void registerNotifications();
  void unregisterNotifications();

  // Closing the window neither quits the launcher nor answers a prompt.
  void onWindowClosed();

  // The actions of the two buttons.
  void continueToInstallFusePressed();
  void cancelInstallFusePressed();

  // Fills the prompt that leads to the macFUSE web site and brings it in front of everything.
  void showInstallFuseWindowWithUpgrading(bool upgrading);

  platform::TextLabel& fuseMessage() const { return window_.fuseMessage(); }
  platform::TextLabel& continueMessage() const { return window_.continueMessage(); }
  platform::PushButton& cancelButton() const { return window_.cancelButton(); }
  platform::PushButton& continueButton() const { return window_.continueButton(); }

  void startUpDidCheckSystemSuccessfully(StartupManager& manager) override;
  void startUpDidLaunchKarnoSuccessfully(StartupManager& manager) override;
  void startupAppShouldTerminate(StartupManager& manager) override;
  void startUpNeedsToInstallFuse(StartupManager& manager, bool isUpgrade) override;
  void startUpDidFailToSetupSystem(StartupManager& manager) override;
  void startUpDidFailToLaunchKarno(StartupManager& manager) override;

 private:
  platform::PromptWindow& window_;
};

}  // namespace karno
