#include "platform/cocoa/application.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/windows/windows.h"
#include "platform/linux/bundles/bundles.h"
#include "platform/linux/dispatch/dispatch.h"
#include "platform/linux/files/file_manager.h"
#include "platform/linux/files/standard_folders.h"
#include "platform/linux/gnustep/alerts.h"
#include "platform/linux/machine/apple_scripts.h"
#include "platform/linux/machine/authorisations.h"
#include "platform/linux/machine/console_log.h"
#include "platform/linux/machine/identifiers.h"
#include "platform/linux/machine/machine_commands.h"
#include "platform/linux/machine/machine_shell.h"
#include "platform/linux/machine/mounts.h"
#include "platform/linux/machine/system_version.h"
#include "platform/linux/machine/workspace.h"
#include "platform/linux/notifications/distributed_notifications.h"
#include "platform/linux/preferences/managed_preferences.h"
#include "platform/linux/preferences/user_defaults.h"
#include "platform/linux/processes/process_list.h"
#include "platform/linux/text/icu_text.h"
#include "platform/linux/updater/bundle_settings.h"
#include "platform/linux/updater/curl_downloads.h"
#include "platform/linux/updater/installer_process.h"
#include "platform/linux/updater/linux_updater.h"
#include "platform/linux/updater/offer_window.h"
#include "platform/linux/updater/update_folders.h"
#include "platform/linux/web/url_loading.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "platform/posix/clock.h"
#include "platform/posix/console_line.h"
#include "platform/posix/files/file_reading.h"
#include "platform/posix/files/files.h"
#include "platform/posix/processes/commands.h"
#include "platform/posix/processes/process_setup.h"
#include "platform/posix/processes/processes.h"
#include "platform/posix/processes/tasks.h"

namespace karno::platform {
namespace {

// The services of this system, in the order in which they need one another.
struct NativeServices {
  Notices notices{[](Notices::Level, std::string_view line) { writeConsoleLine(line); }};
  cocoa::CocoaApplication application;
  LinuxAlerts alerts;
  cocoa::CocoaWindows windows;
  LinuxDispatch dispatch;
  SystemClock clock;
  PosixTasks tasks;
  LinuxWorkspace workspace{tasks};
  PosixProcesses processes;
  PosixFiles files;
  LinuxBundles bundles;
  LinuxUserDefaultsStore userDefaults{bundles, notices};
  LinuxManagedPreferences managedPreferences;
  BusNotifications distributedNotifications{dispatch.mainEvents(), notices};
  IcuText text;
  StandardErrorLog consoleLog;
  LinuxSystemVersion systemVersion;
  updates::CurlDownloads updateDownloads{bundles};
  updates::InstallerProcess updateInstaller{bundles};
  updates::SiblingFolders updateFolders;
  updates::BundleSettings updateSettings{userDefaults, bundles};
  updates::CocoaOfferWindows offerWindows;
  updates::LinuxUpdaters updaters{{.downloads = updateDownloads,
                                   .installer = updateInstaller,
                                   .folders = updateFolders,
                                   .settings = updateSettings,
                                   .offerWindows = offerWindows,
                                   .fetchFeed = [this](const std::string& url, const auto& isWanted) {
                                     return urlLoading.contentsOfURL(url, isWanted);
                                   }}};
  MachineShell shell;
  CurlURLLoading urlLoading{bundles};
  RandomIdentifiers identifiers;
  LinuxProcessList processList;
  PosixFileReading fileReading;
  LinuxFileManager fileManager{notices};
  LinuxStandardFolders standardFolders;
  LinuxMounts mounts;
  PosixCommands commands{tasks, launchForMachine};
  LinuxAppleScripts appleScripts{commands};
  PkexecAuthorisations authorisations{commands};

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
