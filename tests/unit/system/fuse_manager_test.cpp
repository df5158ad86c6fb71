#include "system/fuse_manager.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "platform/property_lists/property_lists.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using test::kFuseInformationFile;
using test::kSwVersLine;
using test::kUnameLine;
using test::Line;
using ::testing::IsEmpty;

// Notes the answers and the thread on which they came.
class DelegateOfTheFuse final : public FuseManagerDelegate {
 public:
  explicit DelegateOfTheFuse(FakePlatform& machine) : machine_(machine) {}
  void fuseMeetsRequirements(FuseManager&) override { note("good"); }
  void fuseNeedsToBeInstalled(FuseManager&, bool isUpgrade) override {
    note(isUpgrade ? "upgrade" : "install");
  }

  std::vector<std::string> calls;

 private:
  void note(const std::string& call) {
    calls.push_back(call + " on " + machine_.scheduler.currentThreadName());
  }
  FakePlatform& machine_;
};

FuseManager& fuse() { return FuseManager::instance(); }

std::vector<std::string> answersOf(FakePlatform& machine) {
  const auto delegate = std::make_shared<DelegateOfTheFuse>(machine);
  fuse().setDelegate(delegate);
  fuse().checkSystemMeetsRequirements();
  return delegate->calls;
}

TEST(FuseCheck, TellsWhatItFinds) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFuse("4.4.1");

  EXPECT_TRUE(fuse().checkFuseIsInstalledInSystem(false));

  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "Fuse[SYSTEM] CPU: 'arm64'"), Line("INFO", "Fuse[SYSTEM] O/S Version: '14.5'"),
                  Line("INFO", "Fuse[SYSTEM] Fuse Version: '4.4.1'"),
                  Line("INFO", "FuseRequirements: System requirements have been met")));
}

TEST(FuseCheck, QuietTellsOnlyOfTheTable) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFuse("4.0.4");

  EXPECT_FALSE(fuse().checkFuseIsInstalledInSystem(true));

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "FuseRequirements: System requirements not met")));
}

TEST(FuseCheck, WarnsWhenNoneIsInstalled) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64");

  EXPECT_FALSE(fuse().checkFuseIsInstalledInSystem(false));

  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("INFO", "Fuse[SYSTEM] CPU: 'arm64'"),
                                                     Line("INFO", "Fuse[SYSTEM] O/S Version: '14.5'"),
                                                     Line("WARN", "Fuse[SYSTEM] Fuse is not installed")));
}

TEST(FuseCheck, QuietSaysNothingWhenNoneIsInstalled) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64");

  EXPECT_FALSE(fuse().checkFuseIsInstalledInSystem(true));

  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(FuseCheck, AnEmptyVersionIsNotAMissingOne) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFuse("");

  EXPECT_THAT(answersOf(machine), ElementsAre("install on main"));
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "Fuse[SYSTEM] CPU: 'arm64'"), Line("INFO", "Fuse[SYSTEM] O/S Version: '14.5'"),
                  Line("INFO", "Fuse[SYSTEM] Fuse Version: ''"),
                  Line("WARN", "FuseRequirements: System requirements not met")));
}

class QuietOrNot : public ::testing::TestWithParam<bool> {};

TEST_P(QuietOrNot, AMissingProcessorIsAnError) {
  FakePlatform machine;
  machine.withSystem("14.5", "").withFuse("4.4.1");

  EXPECT_FALSE(fuse().checkFuseIsInstalledInSystem(GetParam()));

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("*** ERROR ***", "Fuse[SYSTEM] Failed to identify the system cpu")));
}

TEST_P(QuietOrNot, AMissingSystemVersionIsAnError) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "arm64\n";
  machine.shell.outputs[kSwVersLine] = "ProductVersion:\n";

  EXPECT_FALSE(fuse().checkFuseIsInstalledInSystem(GetParam()));

  EXPECT_EQ(machine.consoleMessages().back(),
            Line("*** ERROR ***", "Fuse[SYSTEM] Failed to identify the system version"));
}

INSTANTIATE_TEST_SUITE_P(FuseCheck, QuietOrNot, ::testing::Bool());

TEST(FuseCheck, SaysTheProcessorBeforeItMissesTheSystemVersion) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "arm64\n";

  fuse().checkFuseIsInstalledInSystem(false);

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Fuse[SYSTEM] CPU: 'arm64'"),
                          Line("*** ERROR ***", "Fuse[SYSTEM] Failed to identify the system version")));
}

TEST(FuseCheck, ReadsTheFrameworkAfreshAndTheSystemOnce) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64");

  EXPECT_FALSE(fuse().checkFuseIsInstalledInSystem(true));
  machine.withFuse("4.4.1");
  EXPECT_TRUE(fuse().checkFuseIsInstalledInSystem(true));
  machine.withFuse("4.4.0");
  EXPECT_FALSE(fuse().checkFuseIsInstalledInSystem(true));

  EXPECT_EQ(machine.shell.opened.size(), 2U);
}

TEST(FuseAnswer, ComesOnTheCallingThreadBeforeTheCheckReturns) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFuse("4.4.1");
  const auto delegate = std::make_shared<DelegateOfTheFuse>(machine);
  fuse().setDelegate(delegate);

  machine.onThread(
      [&] {
        fuse().checkSystemMeetsRequirements();
        delegate->calls.push_back("returned");
      },
      "caller");
  machine.runUntilIdle();

  EXPECT_THAT(delegate->calls, ElementsAre("good on caller", "returned"));
}

TEST(FuseAnswer, IsAnInstallationWithoutAVersion) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64");

  EXPECT_THAT(answersOf(machine), ElementsAre("install on main"));
}

TEST(FuseAnswer, IsAnUpgradeWithAnOldVersion) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFuse("4.0.4");

  EXPECT_THAT(answersOf(machine), ElementsAre("upgrade on main"));
}

TEST(FuseAnswer, IsAnUpgradeWhenOnlyTheProcessorIsUnknown) {
  FakePlatform machine;
  machine.withFuse("4.4.1");

  EXPECT_THAT(answersOf(machine), ElementsAre("upgrade on main"));
}

TEST(FuseAnswer, GoesToADelegateThatSomebodyElseKeeps) {
  FakePlatform machine;
  auto delegate = std::make_shared<DelegateOfTheFuse>(machine);

  fuse().setDelegate(delegate);
  const bool isKnown = fuse().delegate() == delegate;
  delegate.reset();

  EXPECT_TRUE(isKnown);
  EXPECT_EQ(fuse().delegate(), nullptr);
}

TEST(FuseAnswer, GoesNowhereWithoutADelegate) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFuse("4.4.1");
  fuse().setDelegate(std::make_shared<DelegateOfTheFuse>(machine));

  fuse().checkSystemMeetsRequirements();

  EXPECT_EQ(machine.consoleMessages().back(),
            Line("INFO", "FuseRequirements: System requirements have been met"));
}

TEST(FuseFramework, IsReadFromTheFirstLibraryOfTheMachine) {
  FakePlatform machine;
  machine.files.localLibraries = {"/Volumes/Other/Library", "/Library"};
  machine.withFuse("4.4.1");

  EXPECT_EQ(fuse().installedFuseVersion(), std::nullopt);
}

TEST(FuseFramework, TellsItsWholeInformation) {
  FakePlatform machine;
  machine.withFuseInformation(
      Value::Dictionary{{"CFBundleVersion", "4.4.1"}, {"CFBundleShortVersionString", "4.4"}});

  EXPECT_EQ(fuse().fuseFrameworkPList(),
            (Value::Dictionary{{"CFBundleVersion", "4.4.1"}, {"CFBundleShortVersionString", "4.4"}}));
  EXPECT_EQ(fuse().installedFuseVersion(), "4.4.1");
}

TEST(FuseFramework, OfAnotherNameIsReadFromItsOwnFolder) {
  FakePlatform machine;
  machine.files.addFile("/Library/Frameworks/Other.framework/Resources/Info.plist",
                        platform::propertyListXML(Value::Dictionary{{"a", "b"}}).value());

  EXPECT_EQ(fuse().plistForFrameworkNamed("Other.framework"), (Value::Dictionary{{"a", "b"}}));
}

class NoLibrary : public ::testing::TestWithParam<std::vector<std::string>> {};

TEST_P(NoLibrary, IsWarnedOf) {
  FakePlatform machine;
  machine.files.localLibraries = GetParam();

  EXPECT_EQ(fuse().plistForFrameworkNamed("macFUSE.framework"), std::nullopt);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Fuse: Failed to determine system /Library path")));
}

INSTANTIATE_TEST_SUITE_P(FuseFramework, NoLibrary,
                         ::testing::Values(std::vector<std::string>{}, std::vector<std::string>{""}));

TEST(FuseFramework, IsQuietlyAbsentWhenItsFileIsBad) {
  FakePlatform machine;
  machine.files.addFile(kFuseInformationFile, "damaged");
  EXPECT_EQ(fuse().fuseFrameworkPList(), std::nullopt);

  machine.withFuseInformation(Value::Array{"4.4.1"});
  EXPECT_EQ(fuse().fuseFrameworkPList(), std::nullopt);

  machine.withFuse("4.4.1");
  machine.files.failRead(kFuseInformationFile, EISDIR);
  EXPECT_EQ(fuse().fuseFrameworkPList(), std::nullopt);

  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(FuseFramework, AVersionThatIsNoTextCountsAsNone) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFuseInformation(Value::Dictionary{{"CFBundleVersion", 5}});

  EXPECT_EQ(fuse().installedFuseVersion(), std::nullopt);
  EXPECT_THAT(answersOf(machine), ElementsAre("install on main"));
}

TEST(FuseFramework, WithoutAVersionCountsAsNotInstalled) {
  FakePlatform machine;
  machine.withFuseInformation(Value::Dictionary{{"CFBundleShortVersionString", "4.4.1"}});

  EXPECT_EQ(fuse().installedFuseVersion(), std::nullopt);
}

}  // namespace
}  // namespace karno
