#pragma once
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/app_delegate.h"
#include "app/main_interface.h"
#include "app/startup_interface.h"
#include "fake_platform.h"

namespace karno::test {

// The launcher's own objects on a fake machine, as the application main routine makes them.
class Launcher {
 public:
  explicit Launcher(FakePlatform& machine) : delegate_(loadMainInterface()) {
    machine.application.setDelegate(delegate_.get());
  }

  void finishLaunching() { delegate_->applicationDidFinishLaunching(); }
  AppDelegate& delegate() { return dynamic_cast<AppDelegate&>(*delegate_); }

 private:
  std::shared_ptr<platform::ApplicationDelegate> delegate_;
};

// Notes what the startup manager tells it, and on which thread: "launched on global(0)".
class StartupRecorder final : public StartupInterface {
 public:
  explicit StartupRecorder(FakePlatform& machine) : machine_(machine) {}

  void startUpDidCheckSystemSuccessfully(StartupManager&) override { note("checked"); }
  void startUpDidLaunchKarnoSuccessfully(StartupManager&) override { note("launched"); }
  void startupAppShouldTerminate(StartupManager&) override { note("should terminate"); }
  void startUpNeedsToInstallFuse(StartupManager&, bool isUpgrade) override {
    note(isUpgrade ? "needs upgrade" : "needs install");
  }
  void startUpDidFailToSetupSystem(StartupManager&) override { note("setup failed"); }
  void startUpDidFailToLaunchKarno(StartupManager&) override { note("launch failed"); }

  std::vector<std::string> calls;
  std::function<void()> whenTold;  // runs inside every call

 private:
  void note(const std::string& call) {
    calls.push_back(call + " on " + machine_.scheduler.currentThreadName());
    if (whenTold) whenTold();
  }

  FakePlatform& machine_;
};

}  // namespace karno::test
