#include "platform/macos/machine/mounts.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cstring>
#include <string>

namespace karno::platform::trial {
namespace {

struct Mount {
  Mount() { current = this; }
  ~Mount() { current = nullptr; }
  Mount(const Mount&) = delete;
  Mount& operator=(const Mount&) = delete;

  static inline Mount* current = nullptr;

  std::string path;
  std::string device;
  std::uint32_t flags = 0;
  int answer = 0;
};

class MacMountsTest : public testing::Test {
 protected:
  Mount mount_;
  const MacMounts mounts_{};
};

constexpr std::uint32_t kReadOnlyAndLocal = 0x1001;

TEST_F(MacMountsTest, TellTheDeviceOfAPath) {
  mount_.device = "/dev/disk4s1";
  mount_.flags = kReadOnlyAndLocal;

  const auto information = mounts_.informationOf("/Volumes/Karno");

  ASSERT_TRUE(information);
  EXPECT_EQ(information->sourceDevice, "/dev/disk4s1");
  EXPECT_FALSE(information->isRootFileSystem);
  EXPECT_EQ(mount_.path, "/Volumes/Karno");
}

TEST_F(MacMountsTest, KnowTheRootFileSystem) {
  mount_.device = "/dev/disk1s1";
  mount_.flags = kReadOnlyAndLocal | 0x4000;

  EXPECT_TRUE(mounts_.informationOf("/")->isRootFileSystem);
}

TEST_F(MacMountsTest, TellNothingOfAPathThatCannotBeAsked) {
  mount_.answer = -1;

  EXPECT_FALSE(mounts_.informationOf("/none"));
}

}  // namespace
}  // namespace karno::platform::trial

extern "C" int karno_stand_in_statfs(const char* path, struct statfs* information) {
  auto& mount = *karno::platform::trial::Mount::current;
  mount.path = path;
  information->f_flags = mount.flags;
  std::strncpy(information->f_mntfromname, mount.device.c_str(), sizeof(information->f_mntfromname) - 1);
  std::strncpy(information->f_mntonname, "/the/place", sizeof(information->f_mntonname) - 1);
  return mount.answer;
}
