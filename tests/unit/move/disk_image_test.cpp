#include "move/disk_image.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "moving_machine.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::MountInformation;
using platform::Value;
using test::kHdiutilLine;
using test::MovingMachine;
using ::testing::IsEmpty;

constexpr const char* kImaged = "/Volumes/Karno/Karno.app";
constexpr const char* kDevice = "/dev/disk4s1";

class DiskImage : public ::testing::Test {
 protected:
  DiskImage() {
    machine_.mounts.mounts["/Volumes/Karno"] =
        MountInformation{.sourceDevice = kDevice, .isRootFileSystem = false};
  }

  MovingMachine machine_{kImaged};
};

TEST_F(DiskImage, IsFoundByItsDevice) {
  machine_.withImages(Value::Array{MovingMachine::image({"/dev/disk3", "/dev/disk3s1"}),
                                   MovingMachine::image({"/dev/disk4", "/dev/disk4s1"})});

  EXPECT_EQ(containingDiskImageDevice(kImaged), kDevice);
  EXPECT_THAT(machine_.mounts.asked, ElementsAre("/Volumes/Karno"));
  EXPECT_THAT(machine_.commands.ran, ElementsAre(kHdiutilLine));
}

TEST_F(DiskImage, IsNoneWhenNoDeviceIsTheSame) {
  machine_.withImages(Value::Array{MovingMachine::image({"/dev/disk4", "/dev/disk4s10"})});

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
}

TEST_F(DiskImage, IsNoneWhenNoImageIsMounted) {
  machine_.withImages(Value::Array{});

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
}

TEST_F(DiskImage, IsNotLookedForOnTheRootFileSystem) {
  machine_.mounts.mounts["/Volumes/Karno"] =
      MountInformation{.sourceDevice = kDevice, .isRootFileSystem = true};
  machine_.withImages(Value::Array{MovingMachine::image({kDevice})});

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
  EXPECT_THAT(machine_.commands.ran, IsEmpty());
}

TEST_F(DiskImage, IsNotLookedForWhenTheMountIsNotKnown) {
  machine_.mounts.mounts["/Volumes/Karno"] = std::nullopt;

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
  EXPECT_THAT(machine_.commands.ran, IsEmpty());
}

TEST_F(DiskImage, IsNoneWhenHdiutilCannotBeRun) {
  machine_.commands.answers.insert_or_assign(kHdiutilLine, platform::Error::posix(2));

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
}

TEST_F(DiskImage, IsNoneWhenHdiutilPrintsNoPropertyList) {
  machine_.commands.answers.insert_or_assign(
      kHdiutilLine, platform::CommandEnd{.end = {}, .standardOutput = "hdiutil: info failed"});

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
}

// Nobody looks at the exit status.
TEST_F(DiskImage, IsFoundThoughHdiutilFails) {
  machine_.withImages(Value::Array{MovingMachine::image({kDevice})});
  machine_.commands.answers.at(kHdiutilLine).value().end.terminationStatus = 1;

  EXPECT_EQ(containingDiskImageDevice(kImaged), kDevice);
}

TEST_F(DiskImage, IsNoneOnASystemThatIsTooOld) {
  machine_.systemVersion.appKit = 949.54;
  machine_.withImages(Value::Array{MovingMachine::image({kDevice})});

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
  EXPECT_THAT(machine_.commands.ran, ElementsAre(kHdiutilLine));
}

TEST_F(DiskImage, IsFoundOnTheFirstSystemThatIsNot) {
  machine_.systemVersion.appKit = 950;
  machine_.withImages(Value::Array{MovingMachine::image({kDevice})});

  EXPECT_EQ(containingDiskImageDevice(kImaged), kDevice);
}

// One malformed entry ends the search, wherever it stands in front of the device.
class MalformedListing : public DiskImage, public ::testing::WithParamInterface<Value> {};

TEST_P(MalformedListing, EndsTheSearch) {
  machine_.withListing(GetParam());

  EXPECT_EQ(containingDiskImageDevice(kImaged), std::nullopt);
}

Value afterImage(Value image) {
  return Value::Dictionary{{"images", Value::Array{std::move(image), MovingMachine::image({kDevice})}}};
}

Value afterEntity(Value entity) {
  return afterImage(Value::Dictionary{
      {"system-entities", Value::Array{std::move(entity), Value::Dictionary{{"dev-entry", kDevice}}}}});
}

INSTANTIATE_TEST_SUITE_P(
    Listings, MalformedListing,
    ::testing::Values(Value("a text"), Value(Value::Array{MovingMachine::image({kDevice})}),
                      Value(Value::Dictionary{}), Value(Value::Dictionary{{"images", "a text"}}),
                      Value(Value::Dictionary{{"images", MovingMachine::image({kDevice})}}),
                      afterImage("a text"), afterImage(Value::Dictionary{{"image-path", "/a.dmg"}}),
                      afterImage(Value::Dictionary{{"system-entities", Value::Dictionary{}}}),
                      afterEntity("a text"), afterEntity(Value::Dictionary{{"mount-point", "/Volumes/A"}}),
                      afterEntity(Value::Dictionary{{"dev-entry", 4}})));

TEST_F(DiskImage, IsFoundBeforeAMalformedEntryCounts) {
  machine_.withImages(Value::Array{MovingMachine::image({kDevice}), "a text"});

  EXPECT_EQ(containingDiskImageDevice(kImaged), kDevice);
}

}  // namespace
}  // namespace karno
