#include "karnoctl/explain/read_only_platform.h"

#include <utility>

namespace karno::karnoctl {
namespace {

using platform::UserDefaults;
using platform::Value;

// Reads those that it is given, which it may own.
class ReadOnlyUserDefaults final : public UserDefaults {
 public:
  explicit ReadOnlyUserDefaults(const UserDefaults& defaults) : defaults_(defaults) {}
  explicit ReadOnlyUserDefaults(std::unique_ptr<UserDefaults> suite)
      : suite_(std::move(suite)), defaults_(*suite_) {}

  std::optional<Value> objectForKey(std::string_view key) const override {
    return defaults_.objectForKey(key);
  }
  bool boolForKey(std::string_view key) const override { return defaults_.boolForKey(key); }
  void setBool(bool, std::string_view) override {}
  void synchronize() override {}

 private:
  const std::unique_ptr<UserDefaults> suite_;
  const UserDefaults& defaults_;
};

platform::Platform readOnly(const platform::Platform& real, platform::ConsoleLog& console,
                            platform::Files& files, platform::UserDefaultsStore& userDefaults) {
  return {.application = real.application,
          .alerts = real.alerts,
          .windows = real.windows,
          .workspace = real.workspace,
          .dispatch = real.dispatch,
          .clock = real.clock,
          .tasks = real.tasks,
          .processes = real.processes,
          .bundles = real.bundles,
          .userDefaults = userDefaults,
          .managedPreferences = real.managedPreferences,
          .distributedNotifications = real.distributedNotifications,
          .files = files,
          .text = real.text,
          .consoleLog = console,
          .systemVersion = real.systemVersion,
          .updaters = real.updaters,
          .shell = real.shell,
          .urlLoading = real.urlLoading,
          .identifiers = real.identifiers,
          .processList = real.processList,
          .fileReading = real.fileReading,
          .fileManager = real.fileManager,
          .standardFolders = real.standardFolders,
          .mounts = real.mounts,
          .commands = real.commands,
          .appleScripts = real.appleScripts,
          .authorisations = real.authorisations,
          .notices = real.notices};
}

}  // namespace

ReadOnlyUserDefaultsStore::ReadOnlyUserDefaultsStore(platform::UserDefaultsStore& store)
    : store_(store),
      standardUserDefaults_(std::make_unique<ReadOnlyUserDefaults>(store.standardUserDefaults())) {}

std::unique_ptr<UserDefaults> ReadOnlyUserDefaultsStore::makeSuite(const std::string& suiteName) {
  return std::make_unique<ReadOnlyUserDefaults>(store_.makeSuite(suiteName));
}

ReadOnlyPlatform::ReadOnlyPlatform(platform::Platform& real)
    : real_(real),
      files_(real.files),
      userDefaults_(real.userDefaults),
      platform_(readOnly(real, console_, files_, userDefaults_)) {
  platform::install(platform_);
}

ReadOnlyPlatform::~ReadOnlyPlatform() { platform::install(real_); }

}  // namespace karno::karnoctl
