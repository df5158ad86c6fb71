#pragma once

namespace karno {

class StartupManager;

// What the startup manager tells its delegate. The calls come on whatever thread the step runs on: a delegate
// that touches a window hops to the main thread itself.
class StartupInterface {
 public:
  virtual ~StartupInterface() = default;
  virtual void startUpDidCheckSystemSuccessfully(StartupManager& manager) = 0;
  virtual void startUpDidLaunchKarnoSuccessfully(StartupManager& manager) = 0;
  virtual void startupAppShouldTerminate(StartupManager& manager) = 0;
  virtual void startUpNeedsToInstallFuse(StartupManager& manager, bool isUpgrade) = 0;
  virtual void startUpDidFailToSetupSystem(StartupManager& manager) = 0;
  virtual void startUpDidFailToLaunchKarno(StartupManager& manager) = 0;
};

}  // namespace karno
