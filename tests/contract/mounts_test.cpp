#include "platform/mounts.h"

#include "world.h"

namespace karno::test {
namespace {

class MountsContract : public Contract {
 protected:
  MountsContract() {
    here_.write(image_ + "/Tools/file", "");
    here_.mountImage(image_, "/dev/disk4s1");
  }

  // "root" for the root file system, "nothing" for a path that cannot be asked.
  std::string deviceOf(const std::string& path) const {
    const auto mount = services_.mounts.informationOf(path);
    if (!mount) return "nothing";
    return mount->isRootFileSystem ? "root" : mount->sourceDevice;
  }

  const std::string image_ = here_.onMachine("/Volumes/Karno");
};

TEST_P(MountsContract, HoldAllThatLiesInThem) {
  EXPECT_EQ(deviceOf(image_), "/dev/disk4s1");
  EXPECT_EQ(deviceOf(image_ + "/Tools"), "/dev/disk4s1");
  EXPECT_EQ(deviceOf(image_ + "/Tools/file"), "/dev/disk4s1");
}

TEST_P(MountsContract, AreFoundBehindLinks) {
  here_.link("link", image_);

  EXPECT_EQ(deviceOf(here_ / "link/Tools"), "/dev/disk4s1");
  EXPECT_EQ(deviceOf(here_ / "link/.."), "root");
}

TEST_P(MountsContract, LeaveTheRestToTheRootFileSystem) {
  here_.write(image_ + "2/file", "");

  EXPECT_EQ(deviceOf(here_.folder()), "root");
  EXPECT_EQ(deviceOf(here_.onMachine("/Volumes")), "root");
  EXPECT_EQ(deviceOf(image_ + "2"), "root");
}

TEST_P(MountsContract, HoldNothingThatIsNotThere) {
  here_.link("broken", image_ + "/none");

  EXPECT_EQ(deviceOf(image_ + "/none"), "nothing");
  EXPECT_EQ(deviceOf(here_ / "none"), "nothing");
  EXPECT_EQ(deviceOf(here_ / "broken"), "nothing");
}

INSTANTIATE_TEST_SUITE_P(Fake, MountsContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, MountsContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
