#include "karnoctl/explain/requirement_check.h"

#include <gtest/gtest.h>

#include "fake_platform.h"
#include "system/fuse_requirements_manager.h"

namespace karno::karnoctl {
namespace {

using test::FakePlatform;

const FuseRequirement& row(std::size_t index) { return FuseRequirement::allOptions().at(index); }

TEST(Objection, IsNoneWhenTheSystemMeetsTheRow) {
  const FakePlatform machine;

  EXPECT_EQ(objectionTo(row(0), {.cpu = "arm64", .macOS = "13.0.0", .fuse = "4.4.1"}), "");
  EXPECT_EQ(objectionTo(row(1), {.cpu = "arm64", .macOS = "12.6.1", .fuse = "4.0.4"}), "");
  EXPECT_EQ(objectionTo(row(2), {.cpu = "x86_64", .macOS = "10.14.6", .fuse = "3.11.2"}), "");
}

TEST(Objection, NamesTheFirstThingThatDoesNotFit) {
  const FakePlatform machine;

  EXPECT_EQ(objectionTo(row(0), {.cpu = "x86_64", .macOS = "12.0", .fuse = "1.0"}), "this Mac has x86_64");
  EXPECT_EQ(objectionTo(row(0), {.cpu = "arm64", .macOS = "12.6.1", .fuse = "4.0"}), "macOS 12.6.1 is older");
  EXPECT_EQ(objectionTo(row(1), {.cpu = "arm64", .macOS = "14.1", .fuse = "4.0"}), "macOS 14.1 is newer");
  EXPECT_EQ(objectionTo(row(0), {.cpu = "arm64", .macOS = "14.1", .fuse = "4.4.0"}),
            "macFUSE 4.4.0 is older");
}

// "13.0" is what the first release of macOS 13 reports; it sorts before "13.0.0".
TEST(Objection, HoldsForTheFirstReleaseOfMacOS13) {
  const FakePlatform machine;

  EXPECT_EQ(objectionTo(row(0), {.cpu = "arm64", .macOS = "13.0", .fuse = "4.4.1"}), "macOS 13.0 is older");
  EXPECT_EQ(objectionTo(row(1), {.cpu = "arm64", .macOS = "13.0", .fuse = "4.4.1"}), "macOS 13.0 is newer");
}

TEST(Objection, NamesWhatIsNotKnown) {
  const FakePlatform machine;

  EXPECT_EQ(objectionTo(row(0), {}), "the processor is not known");
  EXPECT_EQ(objectionTo(row(0), {.cpu = "arm64"}), "the macOS version is not known");
  EXPECT_EQ(objectionTo(row(0), {.cpu = "arm64", .macOS = "14.1"}), "macFUSE is not installed");
  EXPECT_EQ(objectionTo(row(0), {.cpu = "arm64", .macOS = "14.1", .fuse = ""}), "macFUSE tells no version");
}

TEST(MacOSRange, LeavesOutEndsThatAreOpen) {
  EXPECT_EQ(macOSRange(row(0)), "macOS 13.0.0 or later");
  EXPECT_EQ(macOSRange(row(1)), "macOS 12 or earlier");
  EXPECT_EQ(macOSRange(row(2)), "any macOS");
  EXPECT_EQ(macOSRange({"arm64", "4.0", "11.0", "12.9999.9999"}), "macOS 11.0 to 12");
}

TEST(FuseAdvice, NamesTheLowestMacFUSEForTheSystem) {
  const FakePlatform machine;

  EXPECT_EQ(fuseAdvice({.cpu = "arm64", .macOS = "14.5"}).fuse, "4.4.1");
  EXPECT_EQ(fuseAdvice({.cpu = "arm64", .macOS = "12.6"}).fuse, "4.0.4");
  EXPECT_EQ(fuseAdvice({.cpu = "x86_64", .macOS = "10.14.6"}).fuse, "3.11.2");
  EXPECT_EQ(fuseAdvice({.cpu = "x86_64", .macOS = "10.14.6"}).macOS, std::nullopt);
}

TEST(FuseAdvice, NamesTheSystemsThatWouldDoWhereNoMacFUSEDoes) {
  const FakePlatform machine;

  EXPECT_EQ(fuseAdvice({.cpu = "arm64", .macOS = "13.0"}).fuse, std::nullopt);
  EXPECT_EQ(fuseAdvice({.cpu = "arm64", .macOS = "13.0"}).macOS,
            "macOS 13.0.0 or later, or on macOS 12 or earlier, and 13.0 counts as older than 13.0.0");
  EXPECT_EQ(fuseAdvice({.cpu = "i386", .macOS = "14.5"}).macOS, "no macOS with i386");
}

TEST(FuseAdvice, IsNoneForASystemThatIsNotKnown) {
  const FakePlatform machine;

  EXPECT_EQ(fuseAdvice({.cpu = "arm64"}).fuse, std::nullopt);
  EXPECT_EQ(fuseAdvice({.cpu = "", .macOS = "14.5"}).macOS, std::nullopt);
}

TEST(MacOSEnds, AreAbsentWhereTheyAreOpen) {
  EXPECT_EQ(lowestMacOS(row(0)), "13.0.0");
  EXPECT_EQ(highestMacOS(row(0)), std::nullopt);
  EXPECT_EQ(lowestMacOS(row(1)), std::nullopt);
  EXPECT_EQ(highestMacOS(row(1)), "12");
}

using Facts = std::tuple<const char*, const char*, const char*>;

// Whether a row is met is decided by the launcher; the objection only says why not.
class ObjectionFor : public testing::TestWithParam<Facts> {
 protected:
  static bool isMet(const FuseRequirement& requirement) {
    const auto& [cpu, macOS, fuse] = GetParam();
    return FuseRequirementsManager::instance().doesMeetRequirement(requirement, cpu, fuse, macOS);
  }
  static bool hasObjection(const FuseRequirement& requirement) {
    const auto& [cpu, macOS, fuse] = GetParam();
    return !objectionTo(requirement, {.cpu = cpu, .macOS = macOS, .fuse = fuse}).empty();
  }

  const FakePlatform machine;
};

TEST_P(ObjectionFor, StandsExactlyAtTheRowsThatTheLauncherFindsUnmet) {
  EXPECT_NE(hasObjection(row(0)), isMet(row(0)));
  EXPECT_NE(hasObjection(row(1)), isMet(row(1)));
  EXPECT_NE(hasObjection(row(2)), isMet(row(2)));
}

INSTANTIATE_TEST_SUITE_P(Systems, ObjectionFor,
                         testing::Combine(testing::Values("arm64", "x86_64"),
                                          testing::Values("12.6.1", "12.9999.10000", "13.0", "13.0.0",
                                                          "14.5"),
                                          testing::Values("", "3.11.2", "4.0.4", "4.4.1", "4.10.0")));

}  // namespace
}  // namespace karno::karnoctl
