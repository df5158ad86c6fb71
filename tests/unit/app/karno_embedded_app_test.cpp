#include "app/karno_embedded_app.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST(KarnoAppType, HasTheNumbersThatTheLauncherComparesWith) {
  EXPECT_EQ(static_cast<int>(KarnoAppType::FileProvider), 0);
  EXPECT_EQ(static_cast<int>(KarnoAppType::Fuse), 1);
  EXPECT_EQ(sizeof(KarnoAppType), 4U);
}

TEST(EmbeddedAppNames, AreTheTwoBuilds) {
  EXPECT_EQ(KarnoEmbeddedApp::nameForFileProviderApp(), "Karno.app");
  EXPECT_EQ(KarnoEmbeddedApp::nameForFuseApp(), "Karno(Fuse).app");
}

TEST(EmbeddedAppArguments, ChooseTheFuseBuildAndLeaveTheSettingsUntouched) {
  FakePlatform machine;
  machine.withVerboseLogging(true).withArguments({"-launch", "Karno(Fuse).app"});

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::Fuse);
  EXPECT_FALSE(KarnoEmbeddedApp::manager().useFileProvider());
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("DEBUG", "EmbeddedApp[ARGS] Launch Fuse (command-line)")));
  EXPECT_THAT(machine.settings().writes, IsEmpty());
}

TEST(EmbeddedAppArguments, ChooseTheFileProviderBuildAndLeaveTheSettingsUntouched) {
  FakePlatform machine;
  machine.withVerboseLogging(true).withFirstStartup(false).withArguments({"-launch", "Karno.app"});

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::FileProvider);
  EXPECT_TRUE(KarnoEmbeddedApp::manager().useFileProvider());
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("DEBUG", "EmbeddedApp[ARGS] Launch FileProvider (command-line)")));
  EXPECT_THAT(machine.settings().writes, IsEmpty());
}

TEST(EmbeddedAppArguments, AreLoggedOnlyWithVerboseLogging) {
  FakePlatform machine;
  machine.withArguments({"-launch", "Karno(Fuse).app"});

  static_cast<void>(KarnoEmbeddedApp::manager());

  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(EmbeddedAppArguments, WinOverTheAdministratorsValue) {
  FakePlatform machine;
  machine.withAdmin("USE_FILE_PROVIDER", "YES").withArguments({"-launch", "Karno(Fuse).app"});

  EXPECT_EQ(KarnoEmbeddedApp::manager().appType(), KarnoAppType::Fuse);
  EXPECT_THAT(machine.console(), IsEmpty());
}

struct CommandLine {
  std::vector<std::string> arguments;
  KarnoAppType expected;
};

void PrintTo(const CommandLine& commandLine, std::ostream* out) {
  for (const std::string& word : commandLine.arguments) *out << "<" << word << ">";
}

// The settings here would choose the FUSE build.
class EmbeddedAppCommandLine : public ::testing::TestWithParam<CommandLine> {};

TEST_P(EmbeddedAppCommandLine, IsDecidedByItsFirstMatchingPair) {
  FakePlatform machine;
  machine.withFirstStartup(false).withArguments(GetParam().arguments);

  EXPECT_EQ(KarnoEmbeddedApp::manager().appType(), GetParam().expected);
  EXPECT_THAT(machine.settings().writes, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    WithAPair, EmbeddedAppCommandLine,
    ::testing::Values(
        CommandLine{{"-launch", "Karno.app", "-launch", "Karno(Fuse).app"}, KarnoAppType::FileProvider},
        CommandLine{{"-launch", "Karno(Fuse).app", "-launch", "Karno.app"}, KarnoAppType::Fuse},
        CommandLine{{"-launch", "Other.app", "-launch", "Karno.app"}, KarnoAppType::FileProvider},
        CommandLine{{"-launch", "-launch", "Karno.app"}, KarnoAppType::FileProvider},
        CommandLine{{"-psn_0_1", "x", "-launch", "Karno.app", "y"}, KarnoAppType::FileProvider}));

// The settings here would choose the FUSE build.
class EmbeddedAppOtherCommandLine : public ::testing::TestWithParam<std::vector<std::string>> {};

TEST_P(EmbeddedAppOtherCommandLine, LeavesTheDecisionToTheSettings) {
  FakePlatform machine;
  machine.withFirstStartup(false).withArguments(GetParam());

  EXPECT_EQ(KarnoEmbeddedApp::manager().appType(), KarnoAppType::Fuse);
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = No (already using Fuse)")));
}

INSTANTIATE_TEST_SUITE_P(WithoutAPair, EmbeddedAppOtherCommandLine,
                         ::testing::ValuesIn(std::vector<std::vector<std::string>>{
                             {},
                             {"-launch"},
                             {"x", "-launch"},
                             {"-launch", "Other.app"},
                             {"-launch", "karno.app"},
                             {"-Launch", "Karno.app"},
                             {"--launch", "Karno.app"},
                             {"-launch Karno.app"},
                             {"-launch", "x", "Karno.app"},
                             {"Karno.app", "-launch"}}));

// What starts a program chooses every word, the first as well.
TEST(EmbeddedAppArguments, AreLookedAtFromTheVeryFirstWord) {
  FakePlatform machine;
  machine.withFirstStartup(false);
  machine.processes.commandLine = {"-launch", "Karno.app"};

  EXPECT_EQ(KarnoEmbeddedApp::manager().appType(), KarnoAppType::FileProvider);
  EXPECT_THAT(machine.settings().writes, IsEmpty());
}

TEST(EmbeddedAppArguments, MayBeNone) {
  FakePlatform machine;
  machine.processes.commandLine.clear();

  EXPECT_EQ(KarnoEmbeddedApp::manager().appType(), KarnoAppType::FileProvider);
}

TEST(EmbeddedAppSettings, ForcedOnByTheAdministratorAreRecordedAsVerified) {
  FakePlatform machine;
  machine.withAdmin("USE_FILE_PROVIDER", "YES").withFirstStartup(false);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::FileProvider);
  EXPECT_THAT(machine.settings().writes, ElementsAre(Pair("useFileProviderVerified", Value(true)),
                                                     Pair("useFileProvider", Value(true))));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Object=YES"),
                          Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)"),
                          Line("WARN", "Object=YES")));
}

TEST(EmbeddedAppSettings, ForcedOffByTheAdministratorAreRecordedAsVerified) {
  FakePlatform machine;
  machine.withAdmin("USE_FILE_PROVIDER", "false").withUserSetting("useFileProvider", true);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::Fuse);
  EXPECT_THAT(machine.settings().writes, ElementsAre(Pair("useFileProviderVerified", Value(true)),
                                                     Pair("useFileProvider", Value(false))));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Object=false"),
                          Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = No (admin)"),
                          Line("WARN", "Object=false")));
}

TEST(EmbeddedAppSettings, ThatAreVerifiedGiveWayToTheAdministrator) {
  FakePlatform machine;
  machine.withAdmin("USE_FILE_PROVIDER", "NO")
      .withUserSetting("useFileProviderVerified", true)
      .withUserSetting("useFileProvider", true);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::Fuse);
  EXPECT_THAT(machine.settings().writes, ElementsAre(Pair("useFileProviderVerified", Value(true)),
                                                     Pair("useFileProvider", Value(false))));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Object=NO"),
                          Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = No (admin)"),
                          Line("WARN", "Object=NO")));
}

TEST(EmbeddedAppSettings, ThatAreVerifiedHoldWithoutAWrite) {
  FakePlatform machine;
  machine.withUserSetting("useFileProviderVerified", true)
      .withUserSetting("useFileProvider", false)
      .withFirstStartup(true);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::Fuse);
  EXPECT_THAT(machine.settings().writes, IsEmpty());
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = No (verified)")));
}

TEST(EmbeddedAppSettings, ThatAreVerifiedCanMeanYes) {
  FakePlatform machine;
  machine.withUserSetting("useFileProviderVerified", true)
      .withUserSetting("useFileProvider", true)
      .withFirstStartup(false);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::FileProvider);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (verified)")));
}

TEST(EmbeddedAppSettings, OfANewInstallationBecomeFileProvider) {
  FakePlatform machine;

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::FileProvider);
  EXPECT_THAT(machine.settings().writes, ElementsAre(Pair("useFileProviderVerified", Value(true)),
                                                     Pair("useFileProvider", Value(true))));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)")));
}

TEST(EmbeddedAppSettings, OfAnInstallationInUseStayFuse) {
  FakePlatform machine;
  machine.withFirstStartup(false);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::Fuse);
  EXPECT_THAT(machine.settings().writes, ElementsAre(Pair("useFileProviderVerified", Value(true)),
                                                     Pair("useFileProvider", Value(false))));
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = No (already using Fuse)")));
}

TEST(EmbeddedAppSettings, ThatNobodyHasVerifiedAreNotKeptInAnInstallationInUse) {
  FakePlatform machine;
  machine.withFirstStartup(false).withUserSetting("useFileProvider", true);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::Fuse);
  EXPECT_THAT(machine.settings().writes, ElementsAre(Pair("useFileProviderVerified", Value(true)),
                                                     Pair("useFileProvider", Value(false))));
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = No (already using Fuse)")));
}

TEST(EmbeddedAppSettings, ThatNobodyHasVerifiedAreNotKeptInANewInstallation) {
  FakePlatform machine;
  machine.withFirstStartup(true).withUserSetting("useFileProvider", false);

  const KarnoAppType type = KarnoEmbeddedApp::manager().appType();

  EXPECT_EQ(type, KarnoAppType::FileProvider);
  EXPECT_THAT(machine.settings().writes, ElementsAre(Pair("useFileProviderVerified", Value(true)),
                                                     Pair("useFileProvider", Value(true))));
}

TEST(EmbeddedAppSettings, AreVerifiedAtTheSecondStart) {
  FakePlatform machine;
  machine.withFirstStartup(false);
  static_cast<void>(KarnoEmbeddedApp::manager());

  KarnoEmbeddedApp::manager().configureAppTypeForSystem();

  EXPECT_EQ(machine.consoleMessages().back(),
            Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = No (verified)"));
}

TEST(EmbeddedAppSettings, TakeAnAdministratorsValueThatIsNoStringAsNotSet) {
  FakePlatform machine;
  machine.withAdmin("USE_FILE_PROVIDER", true).withFirstStartup(false);

  EXPECT_EQ(KarnoEmbeddedApp::manager().appType(), KarnoAppType::Fuse);
}

TEST(EmbeddedAppManager, DecidesOnceForTheWholeProcess) {
  FakePlatform machine;
  static_cast<void>(KarnoEmbeddedApp::manager());
  const std::size_t lines = machine.console().size();

  machine.withArguments({"-launch", "Karno(Fuse).app"}).withFirstStartup(false);

  EXPECT_EQ(KarnoEmbeddedApp::manager().appType(), KarnoAppType::FileProvider);
  EXPECT_EQ(machine.console().size(), lines);
}

TEST(EmbeddedAppName, IsThatOfTheChosenBuild) {
  FakePlatform machine;
  machine.withArguments({"-launch", "Karno(Fuse).app"});

  EXPECT_EQ(KarnoEmbeddedApp::manager().name(), "Karno(Fuse).app");
}

TEST(EmbeddedAppName, NeverChangesOnceItWasRead) {
  FakePlatform machine;
  static_cast<void>(KarnoEmbeddedApp::manager().name());

  KarnoEmbeddedApp::manager().setAppType(KarnoAppType::Fuse);

  EXPECT_EQ(KarnoEmbeddedApp::manager().name(), "Karno.app");
}

TEST(EmbeddedAppName, FollowsTheTypeUntilItIsRead) {
  FakePlatform machine;

  KarnoEmbeddedApp::manager().setAppType(KarnoAppType::Fuse);

  EXPECT_EQ(KarnoEmbeddedApp::manager().name(), "Karno(Fuse).app");
}

TEST(EmbeddedAppName, IsTheFuseBuildForAnyTypeButZero) {
  FakePlatform machine;

  KarnoEmbeddedApp::manager().setAppType(static_cast<KarnoAppType>(7));

  EXPECT_FALSE(KarnoEmbeddedApp::manager().useFileProvider());
  EXPECT_EQ(KarnoEmbeddedApp::manager().name(), "Karno(Fuse).app");
}

TEST(EmbeddedAppBundle, LiesInTheHelpersOfTheLauncher) {
  FakePlatform machine;
  machine.withEmbeddedBuilds().withArguments({"-launch", "Karno(Fuse).app"});

  const auto bundle = KarnoEmbeddedApp::manager().bundle();

  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->bundlePath(), "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app");
}

TEST(EmbeddedAppBundle, IsLookedForAgainWhileItIsMissing) {
  FakePlatform machine;
  const auto before = KarnoEmbeddedApp::manager().bundle();

  machine.withEmbeddedBuilds();
  const auto after = KarnoEmbeddedApp::manager().bundle();

  EXPECT_EQ(before, nullptr);
  EXPECT_NE(after, nullptr);
}

TEST(EmbeddedAppBundle, ThatOneCallerFoundIsKeptThoughAnotherHadMissedIt) {
  FakePlatform machine;
  KarnoEmbeddedApp& app = KarnoEmbeddedApp::manager();
  std::shared_ptr<const platform::Bundle> found;
  machine.whenLogged(Line("WARN",
                          "Utilities[BUNDLE] Could not find bundle for Karno.app "
                          "(path:/Applications/Karno.app/Contents/Helpers/Karno.app)"),
                     [&] {
                       machine.withEmbeddedBuilds();
                       found = app.bundle();
                     });

  static_cast<void>(app.bundle());
  machine.bundles.removeHelper("Karno.app");

  ASSERT_NE(found, nullptr);
  EXPECT_EQ(app.bundle(), found);
}

TEST(EmbeddedAppBundle, NeverChangesOnceItWasFound) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  const auto before = KarnoEmbeddedApp::manager().bundle();

  machine.bundles.removeHelper("Karno.app");
  const auto after = KarnoEmbeddedApp::manager().bundle();

  EXPECT_NE(before, nullptr);
  EXPECT_EQ(after, before);
}

TEST(EmbeddedAppAccessors, KeepWhatTheyAreGiven) {
  FakePlatform machine;
  KarnoEmbeddedApp& app = KarnoEmbeddedApp::manager();

  app.setName("Other.app");
  app.setArguments({"one", "two"});

  EXPECT_EQ(app.name(), "Other.app");
  EXPECT_EQ(app.arguments(), (std::vector<std::string>{"one", "two"}));
}

}  // namespace
}  // namespace karno
