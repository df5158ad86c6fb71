#include "platform/cocoa/alerts.h"
#include "platform/cocoa/application.h"
#include "platform/cocoa/objc.h"
#include "platform/cocoa/windows.h"
#include "platform/macos/apple_scripts.h"
#include "platform/macos/authorisations.h"
#include "platform/macos/bundles.h"
#include "platform/macos/console_log.h"
#include "platform/macos/dispatch.h"
#include "platform/macos/distributed_notifications.h"
#include "platform/macos/file_manager.h"
#include "platform/macos/identifiers.h"
#include "platform/macos/managed_preferences.h"
#include "platform/macos/mounts.h"
#include "platform/macos/process_list.h"
#include "platform/macos/sparkle_updater.h"
#include "platform/macos/standard_folders.h"
#include "platform/macos/system_version.h"
#include "platform/macos/text.h"
#include "platform/macos/url_loading.h"
#include "platform/macos/user_defaults.h"
#include "platform/macos/workspace.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "platform/posix/clock.h"
#include "platform/posix/commands.h"
#include "platform/posix/file_reading.h"
#include "platform/posix/files.h"
#include "platform/posix/popen_shell.h"
#include "platform/posix/process_setup.h"
#include "platform/posix/processes.h"
#include "platform/posix/tasks.h"

namespace karno::platform {
namespace {

// The services of this system, and the platform that refers to them.
struct NativeServices {
  cocoa::CocoaApplication application;
  cocoa::CocoaAlerts alerts;
  cocoa::CocoaWindows windows;
  MacWorkspace workspace;
  MacDispatch dispatch;
  SystemClock clock;
  PosixTasks tasks;
  PosixProcesses processes;
  PosixFiles files;
  FoundationBundles bundles;
  FoundationUserDefaultsStore userDefaults;
  MacManagedPreferences managedPreferences;
  FoundationDistributedNotifications distributedNotifications;
  FoundationText text;
  NSLogConsole consoleLog;
  FoundationSystemVersion systemVersion;
  SparkleUpdaters updaters{dispatch};
  PopenShell shell;
  FoundationURLLoading urlLoading;
  FoundationIdentifiers identifiers;
  MacProcessList processList;
  PosixFileReading fileReading;
  FoundationFileManager fileManager;
  FoundationStandardFolders standardFolders;
  MacMounts mounts;
  PosixCommands commands{tasks};
  FoundationAppleScripts appleScripts;
  SecurityAuthorisations authorisations;

  Platform platform{.application = application,
                    .alerts = alerts,
                    .windows = windows,
                    .workspace = workspace,
                    .dispatch = dispatch,
                    .clock = clock,
                    .tasks = tasks,
                    .processes = processes,
                    .bundles = bundles,
                    .userDefaults = userDefaults,
                    .managedPreferences = managedPreferences,
                    .distributedNotifications = distributedNotifications,
                    .files = files,
                    .text = text,
                    .consoleLog = consoleLog,
                    .systemVersion = systemVersion,
                    .updaters = updaters,
                    .shell = shell,
                    .urlLoading = urlLoading,
                    .identifiers = identifiers,
                    .processList = processList,
                    .fileReading = fileReading,
                    .fileManager = fileManager,
                    .standardFolders = standardFolders,
                    .mounts = mounts,
                    .commands = commands,
                    .appleScripts = appleScripts,
                    .authorisations = authorisations};
};

void startProcess(int argc, char** argv) {
  setUpProcess();
  objc::startRuntime(argc, argv);
}

}  // namespace

Platform& nativePlatform(int argc, char** argv) {
  static const bool isStarted = (startProcess(argc, argv), true);
  static_cast<void>(isStarted);
  // Threads of ours run until the very end of the process.
  static NeverDestroyed<NativeServices> services;
  return services->platform;
}

}  // namespace karno::platform
