#include "platform/linux/machine/mounts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "../../support/property_list_texts.h"
#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

using test::propertyList;
using test::ScopedEnvironment;
using test::stringEntry;
using test::TemporaryFolder;

constexpr const char* kTable = "var/machine/disk-images.plist";

std::string tableOf(const std::string& images) {
  return propertyList("<key>images</key><array>" + images + "</array>");
}

std::string imageOf(const std::string& entity) {
  return "<dict><key>system-entities</key><array><dict>" + entity + "</dict></array></dict>";
}

std::string mountedAt(const std::string& device, const std::string& place) {
  return imageOf(stringEntry("dev-entry", device) + stringEntry("mount-point", place));
}

class LinuxMountsTest : public testing::Test {
 protected:
  LinuxMountsTest() { fs::create_directories(folder_ / "Volumes/Karno/Tools"); }

  const TemporaryFolder folder_;
  const ScopedEnvironment root_{"KARNO_MACHINE_ROOT", folder_.path()};
  LinuxMounts mounts_;
};

TEST_F(LinuxMountsTest, TakeTheMachineRootForTheRootFileSystem) {
  const auto information = mounts_.informationOf(folder_.path());

  ASSERT_TRUE(information);
  EXPECT_TRUE(information->isRootFileSystem);
}

// A machine root on a disk of its own, such as a home folder often has.
TEST_F(LinuxMountsTest, TakeTheDiskOfTheMachineRootForTheRootFileSystem) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "/dev/shm");

  const auto onThatDisk = mounts_.informationOf("/dev/shm");
  const auto onAnother = mounts_.informationOf("/proc");

  ASSERT_TRUE(onThatDisk);
  EXPECT_TRUE(onThatDisk->isRootFileSystem);
  ASSERT_TRUE(onAnother);
  EXPECT_FALSE(onAnother->isRootFileSystem);
}

TEST_F(LinuxMountsTest, FindADiskImageInAMachineRootBehindALink) {
  folder_.write(kTable, tableOf(mountedAt("/dev/disk4s1", "/Volumes/Karno")));
  const TemporaryFolder elsewhere;
  fs::create_symlink(folder_.path(), elsewhere / "root");
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", elsewhere / "root");

  const auto information = mounts_.informationOf(elsewhere / "root/Volumes/Karno/Tools");

  ASSERT_TRUE(information);
  EXPECT_EQ(information->sourceDevice, "/dev/disk4s1");
}

TEST_F(LinuxMountsTest, PassOverEntriesThatAreNoMounts) {
  folder_.write(
      kTable,
      tableOf("<string>text</string><dict/>" + imageOf(stringEntry("mount-point", "/Volumes/Karno")) +
              imageOf(stringEntry("dev-entry", "/dev/disk3")) + mountedAt("/dev/disk4s1", "/Volumes/Karno")));

  const auto information = mounts_.informationOf(folder_ / "Volumes/Karno");

  ASSERT_TRUE(information);
  EXPECT_EQ(information->sourceDevice, "/dev/disk4s1");
}

TEST_F(LinuxMountsTest, KnowTheMountsOfLinux) {
  const auto information = mounts_.informationOf("/proc/self");

  ASSERT_TRUE(information);
  EXPECT_EQ(information->sourceDevice, "proc");
  EXPECT_FALSE(information->isRootFileSystem);
}

}  // namespace
}  // namespace karno::platform
