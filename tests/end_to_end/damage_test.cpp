#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "expected_logs.h"
#include "hands.h"
#include "made_up_programs.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::ElementsAreArray;

constexpr const char* kNoPropertyList = "This is no property list.\n";

void overwrite(const fs::path& file, const std::string& contents) {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << contents;
}

TEST(Damage, OfTheLaunchersInformationCostsItsVersionAndItsUpdates) {
  Machine machine(builtTools());
  overwrite(machine.bundle() / "Contents/Info.plist", kNoPropertyList);

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  Messages opening = openingMessages();
  std::replace(opening.begin(), opening.end(), std::string("STARTUP Karno Version: " KARNO_VERSION),
               std::string("STARTUP Karno Version: (null)"));
  EXPECT_THAT(
      withoutClientsEnd(machine.console()),
      ElementsAreArray(joined(
          {opening,
           {kFirstStartup},
           fileProviderMessages(),
           {"*** ERROR *** Sparkle[INIT] Failed to start. Reason: Error Domain=SUSparkleErrorDomain Code=6 "
            "\"The application has no identifier.\" UserInfo={NSLocalizedDescription=The application has no "
            "identifier.}"},
           quittingMessages(),
           {kTerminating}})));
}

TEST(Damage, OfTheSharedSettingsMakesItAFirstStart) {
  Machine machine(builtTools());
  overwrite(machine.home() / "Library/Preferences/it.vantul.karno.plist", kNoPropertyList);

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), Contains(kFirstStartup));
}

TEST(Damage, OfTheAdministratorsSettingsLeavesTheChoiceToTheUser) {
  Machine machine(builtTools());
  overwrite(machine.root() / "Library/Managed Preferences/it.vantul.KarnoAdmin.plist", kNoPropertyList);

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.log(), Contains(kFirstStartup));
}

// A file where the folder should be: even the superuser cannot make a folder there.
TEST(Damage, OfTheLogFolderLeavesTheConsoleAndAnOrderlyEnd) {
  Machine machine(builtTools());
  fs::remove_all(machine.home() / "Library/Logs");
  overwrite(machine.home() / "Library/Logs", "");

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), Contains("INFO AppDelegate[TERMINATE] Reason: User selected quit"));
  EXPECT_TRUE(fs::is_empty(machine.home() / "Library/Logs"));
}

// What a full disk does to the log.
TEST(Damage, OfTheLogsRoomIsToldOnTheConsoleOnce) {
  Machine machine(builtTools());
  const fs::path log = machine.home() / "Library/Logs/Karno for macOS/karno-wrapper.log";
  fs::create_directories(log.parent_path());
  fs::create_symlink("/dev/full", log);

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  const std::string console = machine.consoleText();
  const std::string told = "“" + log.string() + "” cannot be written: No space left on device";
  const std::size_t place = console.find(told);
  ASSERT_NE(place, std::string::npos) << console;
  EXPECT_EQ(console.find(told, place + 1), std::string::npos);
  EXPECT_THAT(machine.console(), Contains(kTerminating));
}

TEST(Damage, OfTheWholeLibraryStillStartsTheBuildOfTheAdministrator) {
  Machine machine(builtTools(), {"--admin", "USE_FILE_PROVIDER=YES"});
  fs::remove_all(machine.home() / "Library");
  overwrite(machine.home() / "Library", "");

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), Contains(kStarted));
  EXPECT_THAT(machine.console(), Contains("INFO AppDelegate[TERMINATE] Reason: User selected quit"));
}

// Up to the launch of the client.
Messages untilLaunch() {
  return joined({openingMessages(),
                 {kFirstStartup, "INFO Startup[CHECK] Checking system for FileProvider...",
                  "INFO Startup[CHECK] Using FileProvider", "INFO Main: System is okay - launching Karno"}});
}

// Logged before the alert is shown, whose texts are read then.
constexpr const char* kFailedToStart = "*** ERROR *** Main: Failed to start Karno";

// Once it has been answered.
Messages answeredMessages() {
  return {"INFO AppDelegate[TERMINATE] Reason: Failed to start Karno.app", kTerminating};
}

// What is said where the client is missing, but for the path.
Messages missingClientMessages(const Machine& machine) {
  return {
      "WARN Utilities[BUNDLE] Could not find bundle for Karno.app (path:" + machine.helper().string() + ")",
      "WARN Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app",
      "*** ERROR *** Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app"};
}

// Waits for the alert on the screen and presses its only button.
void answerAlert(const Machine& machine) {
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();
  pressKey(machine, *alert, "Return");
}

std::vector<fs::path> tablesOf(const Machine& machine) {
  std::vector<fs::path> tables;
  for (const auto& entry : fs::recursive_directory_iterator(machine.bundle() / "Contents/Resources")) {
    if (entry.path().filename() == "Strings.json") tables.push_back(entry.path());
  }
  return tables;
}

TEST(Damage, OfTheHelpersEndsTheLauncherWithAnAlert) {
  Machine machine(builtTools());
  fs::remove_all(machine.bundle() / "Contents/Helpers");

  machine.start();
  answerAlert(machine);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(),
              ElementsAreArray(joined(
                  {untilLaunch(), missingClientMessages(machine), {kFailedToStart}, answeredMessages()})));
}

TEST(Damage, OfTheClientsProcessorEndsTheLauncherWithAnAlert) {
  Machine machine(builtTools());
  const fs::path client = machine.helper() / "Contents/MacOS/Karno";
  overwrite(client, ELF{.processor = 0xbeef}.bytes());

  machine.start();
  answerAlert(machine);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(),
              ElementsAreArray(joined(
                  {untilLaunch(),
                   {"INFO Startup[LAUNCH] Launching Karno.app",
                    fmt::format("WARN Startup[LAUNCH] Failed to launch 'file://{}'. Reason: Error "
                                "Domain=NSPOSIXErrorDomain Code=8 \"Exec format error\"",
                                client.string()),
                    "*** ERROR *** Startup[LAUNCH] Failed to launch Karno. Reason: The operation couldn’t be "
                    "completed. Exec format error",
                    kFailedToStart},
                   answeredMessages()})));
}

TEST(Damage, OfEveryTableLeavesAnAlertWithTokens) {
  Machine machine(builtTools());
  fs::remove_all(machine.helper());
  for (const fs::path& table : tablesOf(machine)) fs::remove(table);

  machine.start();
  answerAlert(machine);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(),
              ElementsAreArray(joined(
                  {untilLaunch(),
                   missingClientMessages(machine),
                   {kFailedToStart, "WARN KarnoLocalise: Failed to build path for 'Locale: Strings.json'",
                    "WARN KarnoLocalise: Failed to build path for 'Base.lproj: Strings.json'",
                    "--- KarnoLocalise token 'DRIVE_MOUNT_FAILED' not found",
                    "--- KarnoLocalise token 'OK' not found"},
                   answeredMessages()})));
}

TEST(Damage, OfTheUsersTableLeavesAnAlertInTheBaseLanguage) {
  Machine machine(builtTools());
  fs::remove_all(machine.helper());
  overwrite(machine.bundle() / "Contents/Resources/de.lproj/Strings.json", "no JSON");

  machine.start({"--env", "LANG=de_DE.UTF-8"});
  answerAlert(machine);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {untilLaunch(),
           missingClientMessages(machine),
           {kFailedToStart,
            "WARN KarnoLocalise: Failed to serialise data for 'Locale: Strings.json'. Error=Error "
            "Domain=NSCocoaErrorDomain Code=3840 \"The data couldn’t be read because it isn’t in the correct "
            "format.\" UserInfo={NSDebugDescription=Not JSON from byte 2 on., NSLocalizedDescription=The "
            "data "
            "couldn’t be read because it isn’t in the correct format.}"},
           answeredMessages()})));
}

}  // namespace
}  // namespace karno::test
