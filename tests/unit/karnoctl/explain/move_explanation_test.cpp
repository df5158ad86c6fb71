#include "karnoctl/explain/move_explanation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <tuple>

#include "../../move/moving_machine.h"
#include "karnoctl/explain/explanation.h"
#include "move/karno_move_application_manager.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using test::kDownloaded;
using test::kInstalled;
using test::MovingMachine;
using test::Terminal;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kSuppress = "moveToApplicationsFolderAlertSuppress";
constexpr const char* kAsks =
    "Before that it asks whether it may move itself to the Applications folder, and starts again from there; "
    "without a yes it quits.\n";

// What karnoctl says on the machine.
std::string said() {
  Terminal terminal;
  terminal.run({"explain"});
  return terminal.out();
}

TEST(KarnoctlExplainMove, TellsTheQuestionOfALauncherInDownloads) {
  const MovingMachine machine;

  const std::string text = said();

  EXPECT_THAT(text, HasSubstr(kAsks));
  EXPECT_THAT(text, HasSubstr("\nMove\n"
                              "  launcher   /Users/tester/Downloads/Karno.app\n"
                              "  question   asked: it is in no Applications folder, but in Downloads\n"
                              "  goes to    /Applications/Karno.app\n"
                              "\n"));
}

TEST(KarnoctlExplainMove, TellsWhatBecomesOfTheInstalledCopy) {
  MovingMachine machine;
  machine.withInstalledCopy();

  EXPECT_THAT(said(), HasSubstr("  goes to    /Applications/Karno.app\n"
                                "             what is there goes to the Trash, unless it runs\n"));
}

TEST(KarnoctlExplainMove, TellsThatAPasswordIsNeeded) {
  MovingMachine machine;
  machine.withInstalledCopy().withReadOnlyApplications();

  EXPECT_THAT(said(), HasSubstr("  goes to    /Applications/Karno.app, by an administrator's password\n"
                                "             what is there is removed\n"));
}

class KarnoctlExplainMoveWithin : public testing::TestWithParam<std::string> {};

TEST_P(KarnoctlExplainMoveWithin, AnApplicationsFolderTellsThatNothingIsAsked) {
  const MovingMachine machine(GetParam());

  const std::string text = said();

  EXPECT_THAT(text, HasSubstr("  launcher   " + GetParam() +
                              "\n  question   not asked: it is in an Applications folder\n\n"));
  EXPECT_THAT(text, Not(HasSubstr(kAsks)));
}

INSTANTIATE_TEST_SUITE_P(Folders, KarnoctlExplainMoveWithin,
                         testing::Values(kInstalled, "/Users/tester/Applications/Karno.app",
                                         "/Applications Old/Karno.app", "/opt/Applications/tools/Karno.app"));

TEST(KarnoctlExplainMove, TellsThatTheQuestionIsSuppressed) {
  MovingMachine machine;
  machine.userDefaults.standard().values = {{kSuppress, true}};

  const std::string text = said();

  EXPECT_THAT(text, HasSubstr("  question   not asked: moveToApplicationsFolderAlertSuppress is set "
                              "(it.vantul.KarnoWrapper)\n\n"));
  EXPECT_THAT(text, Not(HasSubstr(kAsks)));
}

TEST(KarnoctlExplainMove, KnowsADiskImage) {
  MovingMachine machine("/Volumes/Karno/Karno.app");
  machine.withDiskImageAt("/Volumes/Karno", "/dev/disk4s1");

  EXPECT_THAT(said(),
              HasSubstr("asked: it is in no Applications folder, but on a disk image, where it stays\n"));
}

TEST(KarnoctlExplainMove, KnowsATranslocatedLauncher) {
  const MovingMachine machine("/private/var/folders/zz/T/AppTranslocation/4C3E/d/Karno.app");

  EXPECT_THAT(
      said(),
      HasSubstr("asked: it is in no Applications folder, but where macOS puts what is in quarantine\n"));
}

TEST(KarnoctlExplainMove, KnowsALauncherInsideAnotherApplication) {
  const MovingMachine machine("/opt/Suite.app/Contents/Karno.app");

  EXPECT_THAT(
      said(),
      HasSubstr("asked: it is in no Applications folder, but inside another application, where it stays\n"));
}

TEST(KarnoctlExplainMove, KnowsNoBetterNameForOtherPlaces) {
  const MovingMachine machine("/Users/tester/Desktop/Karno.app");

  EXPECT_THAT(said(), HasSubstr("asked: it is in no Applications folder, nor below one\n"));
}

TEST(KarnoctlExplainMove, DoesNotKnowWithoutABundle) {
  const MovingMachine machine("/usr/local/bin");

  const std::string text = said();

  EXPECT_THAT(text, HasSubstr("  question   not known: this karnoctl lies in no bundle\n"));
  EXPECT_THAT(text, Not(HasSubstr(kAsks)));
}

TEST(KarnoctlExplainMove, SpeaksJsonToScripts) {
  MovingMachine machine("/Volumes/Karno/Karno.app");
  machine.withDiskImageAt("/Volumes/Karno", "/dev/disk4s1").withInstalledCopy().withReadOnlyApplications();
  Terminal terminal;

  terminal.run({"explain", "--json"});

  EXPECT_EQ(nlohmann::json::parse(terminal.out())["move"], nlohmann::json::parse(R"({
    "asks": true, "because": "elsewhere", "bundle": "/Volumes/Karno/Karno.app", "place": "disk-image",
    "diskImage": "/dev/disk4s1", "destination": "/Applications/Karno.app", "replaces": true,
    "needsPassword": true
  })"));
}

TEST(KarnoctlExplainMove, LeavesEverythingWhereItIs) {
  MovingMachine machine;
  machine.withInstalledCopy();

  said();
  machine.runFor(1.0);

  EXPECT_EQ(machine.launcherAt(kDownloaded), "new launcher");
  EXPECT_EQ(machine.launcherAt(kInstalled), "old launcher");
  EXPECT_TRUE(machine.fileManager.trashed.empty());
  EXPECT_TRUE(machine.commands.started.empty());
}

class KarnoctlExplainMoveOf : public testing::TestWithParam<std::tuple<const char*, bool>> {};

// What is explained is what the launcher then decides.
TEST_P(KarnoctlExplainMoveOf, ALauncherAgreesWithIt) {
  const auto& [path, isSuppressed] = GetParam();
  MovingMachine machine(path);
  machine.userDefaults.standard().values = {{kSuppress, isSuppressed}};

  const bool asks = gatherExplanation(platform::host()).move.asks();

  EXPECT_EQ(asks, KarnoMoveApplicationManager::instance().appNeedsMoving());
}

INSTANTIATE_TEST_SUITE_P(
    Places, KarnoctlExplainMoveOf,
    testing::Combine(testing::Values(kDownloaded, kInstalled, "/Users/tester/Desktop/Karno.app",
                                     "/Applications Old/Karno.app", "/Volumes/Applications/Karno.app"),
                     testing::Bool()));

}  // namespace
}  // namespace karno::karnoctl
