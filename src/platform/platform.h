#pragma once
#include "platform/alerts.h"
#include "platform/apple_scripts.h"
#include "platform/application.h"
#include "platform/authorisations.h"
#include "platform/bundles.h"
#include "platform/clock.h"
#include "platform/commands.h"
#include "platform/console_log.h"
#include "platform/dispatch.h"
#include "platform/distributed_notifications.h"
#include "platform/file_manager.h"
#include "platform/file_reading.h"
#include "platform/files.h"
#include "platform/identifiers.h"
#include "platform/managed_preferences.h"
#include "platform/mounts.h"
#include "platform/notices.h"
#include "platform/process_list.h"
#include "platform/processes.h"
#include "platform/shell.h"
#include "platform/standard_folders.h"
#include "platform/system_version.h"
#include "platform/tasks.h"
#include "platform/text.h"
#include "platform/updater.h"
#include "platform/url_loading.h"
#include "platform/user_defaults.h"
#include "platform/windows.h"
#include "platform/workspace.h"

namespace karno::platform {

// Everything the launcher needs of the machine, one small service each.
struct Platform {
  Application& application;
  Alerts& alerts;
  Windows& windows;
  Workspace& workspace;
  Dispatch& dispatch;
  Clock& clock;
  Tasks& tasks;
  Processes& processes;
  Bundles& bundles;
  UserDefaultsStore& userDefaults;
  ManagedPreferences& managedPreferences;
  DistributedNotifications& distributedNotifications;
  Files& files;
  Text& text;
  ConsoleLog& consoleLog;
  SystemVersion& systemVersion;
  Updaters& updaters;
  Shell& shell;
  URLLoading& urlLoading;
  Identifiers& identifiers;
  ProcessList& processList;
  FileReading& fileReading;
  FileManager& fileManager;
  StandardFolders& standardFolders;
  Mounts& mounts;
  Commands& commands;
  AppleScripts& appleScripts;
  Authorisations& authorisations;
  Notices& notices;
};

// The one Platform of this process. Valid from install() on.
Platform& host();

// Makes `platform` what host() answers: once, before any other thread exists, by the main routine, a tool or
// a test. A tool without work of its own may put another in its place for a while. It must outlive every use.
void install(Platform& platform);

// This system's real services, made on the first call and kept for the life of the process. No window and no
// application object is made by asking for it, so command-line tools use it as well.
Platform& nativePlatform(int argc, char** argv);

}  // namespace karno::platform
