#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "system/fuse_requirement.h"
#include "system/fuse_requirements_manager.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;

bool isMet(const std::string& cpu, const std::string& fuse, const std::string& os) {
  return FuseRequirementsManager::instance().doesMeetRequirementsForSystemCPU(cpu, fuse, os);
}

TEST(FuseRequirementTable, HasItsThreeRowsInOrder) {
  std::vector<std::string> descriptions;
  for (const FuseRequirement& row : FuseRequirement::allOptions()) descriptions.push_back(row.description());

  EXPECT_THAT(descriptions,
              ElementsAre("FuseRequirement(cpu:arm64, Fuse:4.4.1, macMin:13.0.0, macMax:9999.9999.9999)",
                          "FuseRequirement(cpu:arm64, Fuse:4.0.4, macMin:1.0.0, macMax:12.9999.9999)",
                          "FuseRequirement(cpu:x86_64, Fuse:3.11.2, macMin:1.0.0, macMax:9999.9999.9999)"));
}

TEST(FuseRequirementTable, IsTheSameListEveryTime) {
  EXPECT_EQ(&FuseRequirement::allOptions(), &FuseRequirement::allOptions());
}

TEST(FuseRequirementRow, CanBeChanged) {
  FuseRequirement row("a", "b", "c", "d");

  row.setRequiredCPU("arm64");
  row.setFuseVersion("5");
  row.setMacMinVersion("15");
  row.setMacMaxVersion("16");

  EXPECT_EQ(row.description(), "FuseRequirement(cpu:arm64, Fuse:5, macMin:15, macMax:16)");
}

struct System {
  const char* cpu;
  const char* fuse;
  const char* os;
};

void PrintTo(const System& system, std::ostream* out) {
  *out << system.cpu << ", macFUSE " << system.fuse << ", macOS " << system.os;
}

class GoodSystem : public ::testing::TestWithParam<System> {};

TEST_P(GoodSystem, MeetsTheRequirements) {
  FakePlatform machine;

  EXPECT_TRUE(isMet(GetParam().cpu, GetParam().fuse, GetParam().os));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "FuseRequirements: System requirements have been met")));
}

INSTANTIATE_TEST_SUITE_P(
    EveryRow, GoodSystem,
    ::testing::Values(System{"arm64", "4.4.1", "13.0.0"}, System{"arm64", "4.4.1", "13.0.1"},
                      System{"arm64", "4.10.0", "14.5"}, System{"arm64", "5", "26.0"},
                      System{"arm64", "4.4.1", "13.1"}, System{"arm64", "4.0.4", "12.6.1"},
                      System{"arm64", "4.0.4", "11.0"}, System{"arm64", "4.0.4", "12.9999.9999"},
                      System{"arm64", "4.0.4", "1.0.0"}, System{"x86_64", "3.11.2", "10.14.6"},
                      System{"x86_64", "3.11.2", "14.5"}, System{"x86_64", "4.0", "9999.9999.9999"}));

class BadSystem : public ::testing::TestWithParam<System> {};

TEST_P(BadSystem, DoesNotMeetThem) {
  FakePlatform machine;

  EXPECT_FALSE(isMet(GetParam().cpu, GetParam().fuse, GetParam().os));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "FuseRequirements: System requirements not met")));
}

INSTANTIATE_TEST_SUITE_P(
    OfEveryKind, BadSystem,
    ::testing::Values(System{"arm64", "4.4.0", "14.1"}, System{"arm64", "4.4.1", "13.0"},
                      System{"arm64", "4.4.1", "13"}, System{"arm64", "4.0.3", "12.6.1"},
                      System{"arm64", "4.4", "13.0.0"}, System{"arm64", "", "14.5"},
                      System{"arm64", "4.0.4", "12.10000"}, System{"x86_64", "3.10.9", "14.5"},
                      System{"x86_64", "3.11", "14.5"}, System{"x86_64", "3.11.2", "1.0"},
                      System{"ARM64", "4.4.1", "14.5"}, System{"arm64e", "4.4.1", "14.5"},
                      System{"i386", "4.4.1", "14.5"}, System{"", "4.4.1", "14.5"}));

TEST(FuseRequirementsManagerRow, LogsNothingByItself) {
  FakePlatform machine;
  const FuseRequirement row("arm64", "4.4.1", "13.0.0", "14.0.0");
  const FuseRequirementsManager& manager = FuseRequirementsManager::instance();

  EXPECT_TRUE(manager.doesMeetRequirement(row, "arm64", "4.4.1", "13.0.0"));
  EXPECT_TRUE(manager.doesMeetRequirement(row, "arm64", "4.4.1", "14.0.0"));
  EXPECT_FALSE(manager.doesMeetRequirement(row, "x86_64", "4.4.1", "13.0.0"));
  EXPECT_FALSE(manager.doesMeetRequirement(row, "arm64", "4.4.1", "12.9"));
  EXPECT_FALSE(manager.doesMeetRequirement(row, "arm64", "4.4.1", "14.0.1"));
  EXPECT_FALSE(manager.doesMeetRequirement(row, "arm64", "4.4.0", "13.0.0"));
  EXPECT_THAT(machine.console(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace karno
