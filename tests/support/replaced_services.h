#pragma once
#include "platform/platform.h"

namespace karno::test {

// Services of a test's own, in the place of the native ones. Borrowed.
struct ReplacedServices {
  platform::Application* application = nullptr;
  platform::Alerts* alerts = nullptr;
  platform::Bundles* bundles = nullptr;
  platform::Commands* commands = nullptr;
  platform::ConsoleLog* consoleLog = nullptr;
  platform::Files* files = nullptr;
  platform::Shell* shell = nullptr;
};

inline platform::Platform withReplaced(const platform::Platform& native, const ReplacedServices& own) {
  return {.application = own.application ? *own.application : native.application,
          .alerts = own.alerts ? *own.alerts : native.alerts,
          .windows = native.windows,
          .workspace = native.workspace,
          .dispatch = native.dispatch,
          .clock = native.clock,
          .tasks = native.tasks,
          .processes = native.processes,
          .bundles = own.bundles ? *own.bundles : native.bundles,
          .userDefaults = native.userDefaults,
          .managedPreferences = native.managedPreferences,
          .distributedNotifications = native.distributedNotifications,
          .files = own.files ? *own.files : native.files,
          .text = native.text,
          .consoleLog = own.consoleLog ? *own.consoleLog : native.consoleLog,
          .systemVersion = native.systemVersion,
          .updaters = native.updaters,
          .shell = own.shell ? *own.shell : native.shell,
          .urlLoading = native.urlLoading,
          .identifiers = native.identifiers,
          .processList = native.processList,
          .fileReading = native.fileReading,
          .fileManager = native.fileManager,
          .standardFolders = native.standardFolders,
          .mounts = native.mounts,
          .commands = own.commands ? *own.commands : native.commands,
          .appleScripts = native.appleScripts,
          .authorisations = native.authorisations,
          .notices = native.notices};
}

}  // namespace karno::test
