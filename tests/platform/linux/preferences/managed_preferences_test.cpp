#include "platform/linux/preferences/managed_preferences.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "../../support/property_list_texts.h"
#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"
#include "platform/posix/files/home.h"

namespace karno::platform {
namespace {

using test::propertyList;
using test::ScopedEnvironment;
using test::stringEntry;
using test::TemporaryFolder;

constexpr const char* kDomain = "it.vantul.KarnoAdmin";

class LinuxManagedPreferencesTest : public testing::Test {
 protected:
  void set(const std::string& where, const std::string& elements) const {
    folder.write(where + "/" + kDomain + ".plist", propertyList(elements));
  }
  std::optional<Value> value(const std::string& key) { return preferences.copyAppValue(key, kDomain); }

  TemporaryFolder folder;
  ScopedEnvironment root{"KARNO_MACHINE_ROOT", folder / "root"};
  ScopedEnvironment home{"HOME", folder / "home"};
  LinuxManagedPreferences preferences;
};

TEST_F(LinuxManagedPreferencesTest, PreferForcedValuesThenTheUsersThenThoseOfTheMachine) {
  set("root/Library/Preferences", stringEntry("KEY", "machine"));
  EXPECT_EQ(value("KEY"), Value("machine"));

  set("home/Library/Preferences", stringEntry("KEY", "user"));
  EXPECT_EQ(value("KEY"), Value("user"));

  set("root/Library/Managed Preferences", stringEntry("KEY", "forced"));
  EXPECT_EQ(value("KEY"), Value("forced"));

  set("root/Library/Managed Preferences/" + userName(), stringEntry("KEY", "forced for this user"));
  EXPECT_EQ(value("KEY"), Value("forced for this user"));
}

TEST_F(LinuxManagedPreferencesTest, ForceWhatIsSetForOneUserAlone) {
  set("root/Library/Managed Preferences/" + userName(), stringEntry("KEY", "forced for this user"));

  EXPECT_TRUE(preferences.isAppValueForced("KEY", kDomain));
}

// The account that plays the machine's user has a name of its own.
TEST_F(LinuxManagedPreferencesTest, AreThoseOfTheMachinesUserInAHomeOfTheMachine) {
  const ScopedEnvironment homeOfTheMachine("HOME", folder / "root/Users/anna");
  set("root/Library/Managed Preferences/" + userName(), stringEntry("KEY", "forced for the account"));
  set("root/Library/Managed Preferences/anna", stringEntry("KEY", "forced for Anna"));

  EXPECT_EQ(value("KEY"), Value("forced for Anna"));
}

TEST_F(LinuxManagedPreferencesTest, OfNoApplicationAreNone) {
  folder.write("root/Library/Preferences/.plist", propertyList(stringEntry("KEY", "nobody's")));

  EXPECT_EQ(preferences.copyAppValue("KEY", ""), std::nullopt);
}

TEST_F(LinuxManagedPreferencesTest, LookFurtherWhenAFileLacksTheKey) {
  set("root/Library/Managed Preferences", stringEntry("OTHER", "forced"));
  set("root/Library/Preferences", stringEntry("KEY", "machine"));

  EXPECT_EQ(value("KEY"), Value("machine"));
}

// Otherwise damage to the file of forced values would hand the choice to the user.
TEST_F(LinuxManagedPreferencesTest, HoldNothingWhenAFileThatMightHoldTheKeyIsDamaged) {
  folder.write("root/Library/Managed Preferences/it.vantul.KarnoAdmin.plist", "<plist><dict>");
  set("home/Library/Preferences", stringEntry("KEY", "user"));

  EXPECT_EQ(value("KEY"), std::nullopt);
}

TEST_F(LinuxManagedPreferencesTest, DoNotLeaveTheirFolders) {
  folder.write("home/Library/Secret.plist", propertyList(stringEntry("KEY", "secret")));
  std::filesystem::create_directories(folder / "home/Library/Preferences");

  EXPECT_EQ(preferences.copyAppValue("KEY", "../Secret"), std::nullopt);
}

}  // namespace
}  // namespace karno::platform
