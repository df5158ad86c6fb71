#include "platform/linux/machine/system_version.h"

#include <gtest/gtest.h>

#include "../../support/property_list_texts.h"
#include "../../support/scoped_environment.h"
#include "../../support/standard_error_capture.h"
#include "../../support/temporary_folder.h"

namespace karno::platform {
namespace {

using test::propertyList;
using test::ScopedEnvironment;
using test::StandardErrorCapture;
using test::stringEntry;
using test::TemporaryFolder;

constexpr const char* kFile = "System/Library/CoreServices/SystemVersion.plist";

class LinuxSystemVersionTest : public testing::Test {
 protected:
  void setVersion(const std::string& text) const {
    folder.write(kFile, propertyList(stringEntry("ProductVersion", text)));
  }
  std::string complaint() const { return "SystemVersion: no ProductVersion in " + folder / kFile + "\n"; }

  TemporaryFolder folder;
  ScopedEnvironment root{"KARNO_MACHINE_ROOT", folder.path()};
  LinuxSystemVersion version;
};

TEST_F(LinuxSystemVersionTest, ComparesNumerically) {
  setVersion("12.10.3");

  EXPECT_TRUE(version.isAtLeast(12, 10, 3));
  EXPECT_TRUE(version.isAtLeast(12, 9, 9));
  EXPECT_TRUE(version.isAtLeast(11, 99, 99));
  EXPECT_FALSE(version.isAtLeast(12, 10, 4));
  EXPECT_FALSE(version.isAtLeast(12, 11, 0));
  EXPECT_FALSE(version.isAtLeast(13, 0, 0));
}

TEST_F(LinuxSystemVersionTest, TakesMissingNumbersForZero) {
  setVersion("14");

  EXPECT_TRUE(version.isAtLeast(14, 0, 0));
  EXPECT_FALSE(version.isAtLeast(14, 0, 1));
}

TEST_F(LinuxSystemVersionTest, MeetsNothingWithoutAFileAndSaysSoOnce) {
  const StandardErrorCapture console;

  EXPECT_FALSE(version.isAtLeast(0, 0, 0));
  EXPECT_FALSE(version.isAtLeast(10, 14, 6));

  EXPECT_EQ(console.text(), complaint());
}

TEST_F(LinuxSystemVersionTest, MeetsNothingWithADamagedFile) {
  const StandardErrorCapture console;
  folder.write(kFile, "not a property list");

  EXPECT_FALSE(version.isAtLeast(0, 0, 0));
  EXPECT_EQ(console.text(), complaint());
}

class LinuxSystemVersionTextTest : public LinuxSystemVersionTest,
                                   public testing::WithParamInterface<const char*> {};

TEST_P(LinuxSystemVersionTextTest, MeetsNothing) {
  const StandardErrorCapture console;
  setVersion(GetParam());

  EXPECT_FALSE(version.isAtLeast(0, 0, 0));
  EXPECT_EQ(console.text(), complaint());
}

INSTANTIATE_TEST_SUITE_P(WithATextThatIsNoVersion, LinuxSystemVersionTextTest,
                         testing::Values("", "14.", ".5", "14.5.1.2", "14.5 beta", "-1", "99999999999",
                                         "14.-5"));

TEST_F(LinuxSystemVersionTest, KnowsTheAppKitOfEachMacOS) {
  setVersion("10.5.8");
  const double leopard = version.appKitVersionNumber();
  setVersion("10.8");
  const double mountainLion = version.appKitVersionNumber();
  setVersion("10.14.6");
  const double mojave = version.appKitVersionNumber();
  setVersion("14.5");
  const double sonoma = version.appKitVersionNumber();

  EXPECT_EQ(leopard, 949);
  EXPECT_EQ(mountainLion, 1187);
  EXPECT_EQ(mojave, 1671);
  EXPECT_EQ(sonoma, 1894);
}

TEST_F(LinuxSystemVersionTest, KnowsNoAppKitWithoutAFile) {
  const StandardErrorCapture console;

  EXPECT_EQ(version.appKitVersionNumber(), 0);
}

}  // namespace
}  // namespace karno::platform
