#include "karnoctl/explain/read_only_platform.h"

namespace karno::karnoctl {
namespace {

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

ReadOnlyPlatform::ReadOnlyPlatform(platform::Platform& real)
    : real_(real),
      files_(real.files),
      userDefaults_(real.userDefaults),
      platform_(readOnly(real, console_, files_, userDefaults_)) {
  platform::install(platform_);
}

ReadOnlyPlatform::~ReadOnlyPlatform() { platform::install(real_); }

}  // namespace karno::karnoctl
