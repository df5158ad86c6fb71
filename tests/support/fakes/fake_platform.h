#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "fake_alerts.h"
#include "fake_application.h"
#include "fake_authorisations.h"
#include "fake_bundles.h"
#include "fake_clock.h"
#include "fake_commands.h"
#include "fake_console_log.h"
#include "fake_disk.h"
#include "fake_dispatch.h"
#include "fake_distributed_notifications.h"
#include "fake_file_manager.h"
#include "fake_file_reading.h"
#include "fake_files.h"
#include "fake_managed_preferences.h"
#include "fake_process_list.h"
#include "fake_process_table.h"
#include "fake_processes.h"
#include "fake_scheduler.h"
#include "fake_shell.h"
#include "fake_system.h"
#include "fake_tasks.h"
#include "fake_text.h"
#include "fake_updater.h"
#include "fake_url_loading.h"
#include "fake_user_defaults.h"
#include "fake_windows.h"
#include "platform/platform.h"

namespace karno::test {

inline constexpr const char* kLogFolder = "/Users/tester/Library/Logs/Karno for macOS";
inline constexpr const char* kLogFile = "/Users/tester/Library/Logs/Karno for macOS/karno-wrapper.log";
inline constexpr const char* kOldLogFile = "/Users/tester/Library/Logs/Karno for macOS/karno-wrapper.old.log";

inline constexpr const char* kFuseInformationFile =
    "/Library/Frameworks/macFUSE.framework/Resources/Info.plist";
inline constexpr const char* kSwVersLine = R"(/bin/sh --noprofile -c "sw_vers")";
inline constexpr const char* kUnameLine = R"(/bin/sh --noprofile -c "uname -m")";

// The level and message of one line of the launcher's log.
struct Line {
  std::string level;
  std::string message;

  Line(std::string ofLevel, std::string ofMessage)
      : level(std::move(ofLevel)), message(std::move(ofMessage)) {}

  // Takes a whole line apart; one that is not a log line becomes a message without level.
  static Line parse(const std::string& text);

  bool operator==(const Line&) const = default;
};

void PrintTo(const Line& line, std::ostream* out);

// A whole machine for one test: every service of the port, virtual time, one thread at a time. It installs
// itself as the host. The launcher's singletons outlive it, so a test that uses them needs a process to
// itself.
class FakePlatform {
 public:
  // Without a seed, KARNO_TEST_SEED of the environment is taken, else always the same one.
  explicit FakePlatform(std::optional<std::uint64_t> seed = std::nullopt);
  ~FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;

  static std::uint64_t defaultSeed();

  // Virtual time and order, see FakeScheduler.
  void runUntilIdle() { scheduler.runUntilIdle(); }
  void runFor(double seconds) { scheduler.runFor(seconds); }
  bool runUntil(const std::function<bool()>& predicate, double limitSeconds) {
    return scheduler.runUntil(predicate, limitSeconds);
  }
  double seconds() const { return scheduler.secondsSinceStart(); }

  // Runs the block later on a foreign virtual thread of its own.
  void onThread(platform::Block block, std::string name = "foreign") {
    scheduler.addThread(std::move(name), std::move(block));
  }

  FakePlatform& withAdmin(const std::string& key, platform::Value value);
  FakePlatform& withoutAdmin(const std::string& key);
  FakePlatform& withUserSetting(const std::string& key, platform::Value value);
  FakePlatform& withVerboseLogging(bool on) { return withUserSetting("verboseLogging", on); }
  FakePlatform& withFirstStartup(bool first) { return withUserSetting("isFirstStartup", first); }
  FakePlatform& withArguments(std::vector<std::string> afterProgramPath);
  FakePlatform& withEmbeddedBuilds();                  // both, in Contents/Helpers
  FakePlatform& withStrings(const std::string& json);  // the base table of user-visible texts
  FakePlatform& withSystem(const std::string& macOS,
                           const std::string& cpu);    // as the shell commands tell it
  FakePlatform& withFuse(const std::string& version);  // installs macFUSE, or another version of it
  FakePlatform& withFuseInformation(const platform::Value& value);  // any content of its information file

  // A file in the bundle's resources, which is found by its name: "Strings.json", as the copy for the user's
  // language, or "Base.lproj/Strings.json".
  FakePlatform& withResource(const std::string& resource, const std::string& content);

  // The launcher's own suite.
  FakeUserDefaultsStore::Suite& settings() { return userDefaults.suite("it.vantul.karno"); }

  // What has reached the log file.
  std::vector<Line> log() const;
  std::vector<std::string> fullLogLines() const { return files.lines(kLogFile); }

  // The console log: whole lines, and the same taken apart.
  std::vector<std::string> console() const { return consoleLog.lines(); }
  std::vector<Line> consoleMessages() const;

  // Runs the block inside the logging of each such line, which tells what came before the line and what not.
  void whenLogged(const Line& line, std::function<void()> block);

  // Posts what the embedded application would.
  void postMessage(platform::Value message);
  void postUserInfo(platform::Value::Dictionary userInfo);

  const std::uint64_t seed;
  FakeScheduler scheduler{seed};
  FakeApplication application{scheduler};
  FakeAlerts alerts{scheduler};
  FakeWindows windows{scheduler};
  FakeDispatch dispatch{scheduler};
  FakeClock clock{scheduler};
  FakeFiles files{scheduler, clock};
  FakeBundles bundles{&files};
  FakeProcessTable processTable{scheduler, clock, bundles, files};
  FakeTasks tasks{scheduler, processTable};
  FakeProcesses processes{scheduler, processTable};
  FakeProcessList processList{processTable};
  FakeWorkspace workspace{scheduler, processTable, bundles};
  FakeUserDefaultsStore userDefaults{scheduler};
  FakeManagedPreferences managedPreferences{userDefaults};
  FakeDistributedNotifications notifications{scheduler};
  FakeText text;
  FakeConsoleLog consoleLog{scheduler};
  FakeSystemVersion systemVersion;
  FakeUpdater updater{scheduler};
  FakeShell shell{scheduler};
  FakeURLLoading network{scheduler};
  FakeIdentifiers identifiers;
  FakeFileReading fileReading{files};
  FakeFileManager fileManager{files};
  FakeStandardFolders standardFolders;
  FakeMounts mounts{files};
  FakeCommands commands{processTable};
  FakeAppleScripts appleScripts{scheduler};
  FakeAuthorisations authorisations{scheduler};
  platform::Notices notices{
      [this](platform::Notices::Level, std::string_view line) { consoleLog.log(line); }};

 private:
  platform::Platform platform_;
};

}  // namespace karno::test
