#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "expected_logs.h"
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
      machine.console(),
      ElementsAreArray(joined(
          {opening,
           {kFirstStartup},
           fileProviderMessages(),
           {"*** ERROR *** Sparkle[INIT] Failed to start. Reason: Error Domain=SUSparkleErrorDomain Code=6 "
            "\"The application has no identifier.\" UserInfo={NSLocalizedDescription=The application has no "
            "identifier.}"},
           quittingMessages(),
           {"WARN Startup[TERMINATED] Child terminated (status:0, reason:1)",
            "WARN Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated",
            kTerminating}})));
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

TEST(Damage, OfTheWholeLibraryStillStartsTheBuildOfTheAdministrator) {
  Machine machine(builtTools(), {"--admin", "USE_FILE_PROVIDER=YES"});
  fs::remove_all(machine.home() / "Library");
  overwrite(machine.home() / "Library", "");

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), Contains(kStarted));
  EXPECT_THAT(machine.console(), Contains("INFO AppDelegate[TERMINATE] Reason: User selected quit"));
}

}  // namespace
}  // namespace karno::test
