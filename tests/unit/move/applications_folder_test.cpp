#include "move/applications_folder.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "moving_machine.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::MovingMachine;
using ::testing::IsEmpty;

constexpr const char* kSuppress = "moveToApplicationsFolderAlertSuppress";

TEST(ApplicationsFolder, IsTheOneOfAnyDomain) {
  const MovingMachine machine;

  EXPECT_TRUE(isInApplicationsFolder("/Users/tester/Applications/Karno.app"));
  EXPECT_TRUE(isInApplicationsFolder("/Applications/Tools/Karno.app"));
  EXPECT_TRUE(isInApplicationsFolder("/Network/Applications/Karno.app"));
  EXPECT_TRUE(isInApplicationsFolder("/System/Applications/Karno.app"));
}

// A plain comparison of texts: nobody asks whether a component ends there.
TEST(ApplicationsFolder, CountsByItsLettersAlone) {
  const MovingMachine machine;

  EXPECT_TRUE(isInApplicationsFolder("/Applications Old/Karno.app"));
  EXPECT_TRUE(isInApplicationsFolder("/ApplicationsKarno.app"));
}

TEST(ApplicationsFolder, IsAnyFolderOfThatName) {
  const MovingMachine machine;

  EXPECT_TRUE(isInApplicationsFolder("/Volumes/Disk/Applications/Karno.app"));
  EXPECT_TRUE(isInApplicationsFolder("/Volumes//Applications//Karno.app"));
  EXPECT_TRUE(isInApplicationsFolder("/Volumes/Applications"));
}

TEST(ApplicationsFolder, IsNoFolderOfALikeName) {
  const MovingMachine machine;

  EXPECT_FALSE(isInApplicationsFolder("/Volumes/applications/Karno.app"));
  EXPECT_FALSE(isInApplicationsFolder("/Volumes/My Applications/Karno.app"));
  EXPECT_FALSE(isInApplicationsFolder("/Users/tester/Downloads/Karno.app"));
  EXPECT_FALSE(isInApplicationsFolder(""));
}

TEST(ApplicationsFolder, IsTheFolderThatALinkToItLeadsTo) {
  MovingMachine machine;
  machine.files.addDirectory("/Volumes/Data/Programs");
  machine.files.addSymbolicLink("/Users/tester/Applications", "/Volumes/Data/Programs");

  EXPECT_TRUE(isInApplicationsFolder("/Volumes/Data/Programs/Karno.app"));
  EXPECT_FALSE(isInApplicationsFolder("/Volumes/Data/Programs/Tools/Karno.app"));
}

TEST(ApplicationsFolder, IsTheOneOfAnotherCaseOnADiskThatFoldsIt) {
  MovingMachine machine;
  machine.files.addDirectory("/applications");
  EXPECT_FALSE(isInApplicationsFolder("/applications/Karno.app"));

  machine.fileManager.foldsCase = true;

  EXPECT_TRUE(isInApplicationsFolder("/applications/Karno.app"));
}

TEST(ApplicationNeedsMoving, OutsideOfEveryApplicationsFolder) {
  const MovingMachine machine("/Users/tester/Downloads/Karno.app");

  EXPECT_TRUE(applicationNeedsMoving(false));
}

TEST(ApplicationNeedsMoving, NotInsideOfOne) {
  const MovingMachine machine("/Users/tester/Applications/Karno.app");

  EXPECT_FALSE(applicationNeedsMoving(false));
}

TEST(ApplicationNeedsMoving, NeverWhereTheUserDefaultSaysSo) {
  MovingMachine machine("/Volumes/Karno/Karno.app");
  machine.withDiskImageAt("/Volumes/Karno", "/dev/disk4s1");
  machine.userDefaults.standard().values.insert_or_assign(kSuppress, true);

  EXPECT_FALSE(applicationNeedsMoving(false));
  EXPECT_FALSE(applicationNeedsMoving(true));
  EXPECT_THAT(machine.commands.ran, IsEmpty());
  EXPECT_THAT(machine.userDefaults.standard().writes, IsEmpty());
}

TEST(ApplicationNeedsMoving, WhereTheUserDefaultIsFalse) {
  MovingMachine machine;
  machine.userDefaults.standard().values.insert_or_assign(kSuppress, false);

  EXPECT_TRUE(applicationNeedsMoving(false));
}

TEST(ApplicationNeedsMoving, FromADiskImageWhenOnlyThatCounts) {
  MovingMachine machine("/Volumes/Applications/Karno.app");
  machine.withDiskImageAt("/Volumes/Applications", "/dev/disk4s1");

  EXPECT_TRUE(applicationNeedsMoving(true));
  EXPECT_FALSE(applicationNeedsMoving(false));
}

TEST(ApplicationNeedsMoving, NotFromTheDiskItselfWhenOnlyADiskImageCounts) {
  const MovingMachine machine;

  EXPECT_FALSE(applicationNeedsMoving(true));
}

TEST(ApplicationNeedsMoving, AsksNoDiskImageWhereNoneCounts) {
  const MovingMachine machine;

  static_cast<void>(applicationNeedsMoving(false));

  EXPECT_THAT(machine.mounts.asked, IsEmpty());
}

}  // namespace
}  // namespace karno
