#include "platform/cocoa/application.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/windows/alerts.h"
#include "platform/cocoa/windows/windows.h"
#include "platform/macos/appkit/apple_scripts.h"
#include "platform/macos/appkit/workspace.h"
#include "platform/macos/bundles/bundles.h"
#include "platform/macos/dispatch/dispatch.h"
#include "platform/macos/files/file_manager.h"
#include "platform/macos/files/files.h"
#include "platform/macos/files/standard_folders.h"
#include "platform/macos/machine/console_log.h"
#include "platform/macos/machine/identifiers.h"
#include "platform/macos/machine/mounts.h"
#include "platform/macos/machine/system_version.h"
#include "platform/macos/notifications/distributed_notifications.h"
#include "platform/macos/preferences/managed_preferences.h"
#include "platform/macos/preferences/user_defaults.h"
#include "platform/macos/processes/authorisations.h"
#include "platform/macos/processes/process_list.h"
#include "platform/macos/text/text.h"
#include "platform/macos/updater/sparkle_updater.h"
#include "platform/macos/web/url_loading.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "platform/posix/clock.h"
#include "platform/posix/console_line.h"
#include "platform/posix/files/file_reading.h"
#include "platform/posix/processes/commands.h"
#include "platform/posix/processes/popen_shell.h"
#include "platform/posix/processes/process_setup.h"
#include "platform/posix/processes/processes.h"
#include "platform/posix/processes/tasks.h"

namespace karno::platform {
namespace {

// The services of this system, and the platform that refers to them.
struct NativeServices {
  Notices notices{[](Notices::Level, std::string_view line) { writeConsoleLine(line); }};
  cocoa::CocoaApplication application;
  cocoa::CocoaAlerts alerts;
  cocoa::CocoaWindows windows;
  MacWorkspace workspace;
  MacDispatch dispatch;
  SystemClock clock;
  PosixTasks tasks;
  PosixProcesses processes;
  FoundationFiles files;
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
                    .authorisations = authorisations,
                    .notices = notices};
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
