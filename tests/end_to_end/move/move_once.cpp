// Moves a bundle as the launcher does, on this system's real disk, with a user who agrees to everything.
// Nothing is shown and nothing is opened.
//   move_once BUNDLE      with HOME and KARNO_MACHINE_ROOT set; ends with the code of the error
#include <string>

#include "move/move_application.h"
#include "platform/platform.h"

namespace karno::test {
namespace {

constexpr int kNoBundleStatus = 64;

class AgreeingUser final : public platform::Alerts {
 public:
  long runModal(const platform::Alert&) override { return platform::kAlertFirstButtonReturn; }
};

class ActiveApplication final : public platform::Application {
 public:
  bool isActive() const override { return true; }
  void activateIgnoringOtherApps() override {}
  void setActivationPolicy(platform::ActivationPolicy) override {}
  void requestUserAttention(platform::AttentionRequest) override {}
  void terminate() override {}
};

class NoCommands final : public platform::Commands {
 public:
  platform::Result<platform::CommandEnd> run(const platform::TaskLaunch&) override {
    return platform::CommandEnd{};
  }
  std::optional<platform::Error> start(const platform::TaskLaunch&) override { return std::nullopt; }
};

class OneBundle final : public platform::Bundles {
 public:
  OneBundle(const platform::Bundles& bundles, const std::string& path)
      : bundle_(bundles.bundleAtPath(path)) {}

  const platform::Bundle& mainBundle() const override { return *bundle_; }
  std::shared_ptr<const platform::Bundle> bundleAtPath(const std::string&) const override { return bundle_; }

 private:
  const std::shared_ptr<const platform::Bundle> bundle_;
};

platform::Platform withServices(const platform::Platform& native, platform::Application& application,
                                platform::Alerts& alerts, platform::Bundles& bundles,
                                platform::Commands& commands) {
  return {application,
          alerts,
          native.windows,
          native.workspace,
          native.dispatch,
          native.clock,
          native.tasks,
          native.processes,
          bundles,
          native.userDefaults,
          native.managedPreferences,
          native.distributedNotifications,
          native.files,
          native.text,
          native.consoleLog,
          native.systemVersion,
          native.updaters,
          native.shell,
          native.urlLoading,
          native.identifiers,
          native.processList,
          native.fileReading,
          native.fileManager,
          native.standardFolders,
          native.mounts,
          commands,
          native.appleScripts,
          native.authorisations};
}

int moveOnce(const platform::Platform& native, const std::string& path) {
  ActiveApplication application;
  AgreeingUser user;
  if (!native.bundles.bundleAtPath(path)) return kNoBundleStatus;
  OneBundle bundles(native.bundles, path);
  NoCommands commands;
  platform::Platform platform = withServices(native, application, user, bundles, commands);
  platform::install(platform);
  const auto error = moveApplicationToApplicationsFolder(false);
  return error ? static_cast<int>(error->code()) : 0;
}

}  // namespace
}  // namespace karno::test

int main(int argc, char** argv) {
  return karno::test::moveOnce(karno::platform::nativePlatform(argc, argv), argc > 1 ? argv[1] : "");
}
