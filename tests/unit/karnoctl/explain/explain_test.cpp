#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "fake_platform.h"
#include "karnoctl/explain/explanation.h"
#include "karnoctl/explain/explanation_text.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using platform::Value;
using test::FakePlatform;
using test::Terminal;

constexpr const char* kMarker = "/Users/tester/KARNOUPGRADE.debug";

TEST(KarnoctlExplain, KnowsTheFirstSystemWithFileProvider) {
  FakePlatform machine;
  Terminal terminal;
  machine.withSystem("12.3", "arm64").withEmbeddedBuilds();
  machine.systemVersion.running = {12, 3, 0};

  terminal.run({"explain"});

  EXPECT_NE(terminal.out().find("The system check passes: macOS has File Provider"), std::string::npos)
      << terminal.out();
}

TEST(KarnoctlExplain, TakesAnEmptyAnswerOfTheSystemForNone) {
  FakePlatform machine;
  Explanation explanation;
  explanation.system.macOS = "";

  const std::string text = explanationText(explanation);

  EXPECT_NE(text.find("  macOS      not known\n"), std::string::npos) << text;
}

TEST(KarnoctlExplain, TellsTheWholeStoryOfAFirstStart) {
  FakePlatform machine;
  Terminal terminal;
  machine.withSystem("14.5", "arm64").withEmbeddedBuilds();

  const int status = terminal.run({"explain"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.err(), "");
  EXPECT_EQ(terminal.out(),
            "The next start runs the File Provider build, Karno.app: this is the first start.\n"
            "The system check passes: macOS has File Provider from version 12.3 on.\n"
            "\n"
            "Choice of the build (\">\" decides)\n"
            "    administrator   USE_FILE_PROVIDER is not set\n"
            "    settled choice  none\n"
            "  > first start     isFirstStartup = yes\n"
            "\n"
            "System\n"
            "  macOS      14.5 (23F79)\n"
            "  processor  arm64\n"
            "  macFUSE    none, looked for in /Library/Frameworks/macFUSE.framework/Resources/Info.plist\n"
            "\n"
            "macFUSE for the FUSE build (one row is enough)\n"
            "  ✗ arm64   4.4.1+    macOS 13.0.0 or later  macFUSE is not installed\n"
            "  ✗ arm64   4.0.4+    macOS 12 or earlier    macOS 14.5 is newer\n"
            "  ✗ x86_64  3.11.2+   any macOS              this Mac has arm64\n"
            "\n"
            "Move\n"
            "  launcher   /Applications/Karno.app\n"
            "  question   not asked: it is in an Applications folder\n"
            "\n"
            "Updates\n"
            "  feed       https://updates.vantul.it/updates/macos/appcast.eddsa.xml\n"
            "             the usual one, since there is no /Users/tester/KARNOUPGRADE.debug\n"
            "  automatic  left to the user\n"
            "\n"
            "Settings\n"
            "  USE_FILE_PROVIDER        not set\n"
            "  UPDATES_ENABLED          not set\n"
            "  useFileProviderVerified  no               default\n"
            "  useFileProvider          no               default\n"
            "  isFirstStartup           yes              default\n"
            "  verboseLogging           no               default\n");
}

TEST(KarnoctlExplain, TellsTheWholeStoryOfAManagedMacWithFuse) {
  FakePlatform machine;
  Terminal terminal;
  machine.withSystem("13.6.1", "arm64").withFuse("4.4.1").withEmbeddedBuilds();
  machine.withAdmin("USE_FILE_PROVIDER", "NO");
  machine.userDefaults.suite("it.vantul.KarnoAdmin").values = {{"UPDATES_ENABLED", "no"}};
  machine.withUserSetting("useFileProvider", true).withUserSetting("useFileProviderVerified", true);
  machine.files.addFile(kMarker, " https://updates.vantul.it/beta.xml\n");

  terminal.run({"explain"});

  EXPECT_EQ(terminal.out(),
            "The next start runs the FUSE build, Karno(Fuse).app: the administrator has chosen it.\n"
            "The system check passes: macFUSE is good enough.\n"
            "\n"
            "Choice of the build (\">\" decides)\n"
            "  > administrator   USE_FILE_PROVIDER = \"NO\": off\n"
            "    settled choice  useFileProvider = yes\n"
            "    first start     isFirstStartup = yes\n"
            "\n"
            "System\n"
            "  macOS      13.6.1 (23F79)\n"
            "  processor  arm64\n"
            "  macFUSE    4.4.1, read from /Library/Frameworks/macFUSE.framework/Resources/Info.plist\n"
            "\n"
            "macFUSE for the FUSE build (one row is enough)\n"
            "  ✓ arm64   4.4.1+    macOS 13.0.0 or later\n"
            "  ✗ arm64   4.0.4+    macOS 12 or earlier    macOS 13.6.1 is newer\n"
            "  ✗ x86_64  3.11.2+   any macOS              this Mac has arm64\n"
            "\n"
            "Move\n"
            "  launcher   /Applications/Karno.app\n"
            "  question   not asked: it is in an Applications folder\n"
            "\n"
            "Updates\n"
            "  feed       https://updates.vantul.it/beta.xml\n"
            "             named in /Users/tester/KARNOUPGRADE.debug\n"
            "  automatic  switched off by the administrator\n"
            "\n"
            "Settings\n"
            "  USE_FILE_PROVIDER        \"NO\": off        managed preferences (it.vantul.KarnoAdmin)\n"
            "  UPDATES_ENABLED          \"no\": off        preferences of the user or the machine "
            "(it.vantul.KarnoAdmin)\n"
            "  useFileProviderVerified  yes              user defaults (it.vantul.karno)\n"
            "  useFileProvider          yes              user defaults (it.vantul.karno)\n"
            "  isFirstStartup           yes              default\n"
            "  verboseLogging           no               default\n");
}

TEST(KarnoctlExplain, LeavesNoTrace) {
  FakePlatform machine;
  Terminal terminal;
  machine.withAdmin("USE_FILE_PROVIDER", "YES").withAdmin("UPDATES_ENABLED", true);
  machine.files.addFile(kMarker, "this is no URL");
  machine.shell.closeFailures[test::kSwVersLine] = true;

  terminal.run({"explain"});
  machine.runFor(1.0);

  EXPECT_TRUE(machine.settings().writes.empty());
  EXPECT_TRUE(machine.console().empty());
  EXPECT_FALSE(machine.files.fileExists(test::kLogFolder));
  EXPECT_FALSE(machine.files.fileExists(test::kLogFile));
}

TEST(KarnoctlExplain, LeavesTheInstalledPlatformAsItWas) {
  FakePlatform machine;
  const platform::Platform* const before = &platform::host();
  Terminal terminal;

  terminal.run({"explain"});

  EXPECT_EQ(&platform::host(), before);
}

TEST(KarnoctlExplain, SaysWhenTheChosenBuildIsMissing) {
  FakePlatform machine;

  const std::string text = explanationText(gatherExplanation(platform::host()));

  EXPECT_TRUE(
      text.starts_with("The next start runs the File Provider build, Karno.app: this is the first start.\n"
                       "It will fail: there is no Karno.app in the launcher's bundle.\n"))
      << text;
}

TEST(KarnoctlExplain, LetsFuseStandInOnAMacThatIsTooOldForFileProvider) {
  FakePlatform machine;
  machine.withSystem("12.2.1", "arm64").withFuse("4.4.1");
  machine.systemVersion.running = {12, 2, 1};

  const Explanation explanation = gatherExplanation(platform::host());

  EXPECT_TRUE(explanation.choice.useFileProvider);
  EXPECT_EQ(explanation.bundleName, "Karno.app");
  EXPECT_EQ(explanation.check, SystemCheck::FuseForOldSystem);
}

TEST(KarnoctlExplain, TellsAnInstallationFromAnUpgradeOfFuse) {
  FakePlatform machine;
  machine.withSystem("14.5", "arm64").withFirstStartup(false);

  EXPECT_EQ(gatherExplanation(platform::host()).check, SystemCheck::FuseToBeInstalled);

  machine.withFuse("4.0.4");
  EXPECT_EQ(gatherExplanation(platform::host()).check, SystemCheck::FuseToBeUpgraded);

  machine.withFuse("");
  EXPECT_EQ(gatherExplanation(platform::host()).check, SystemCheck::FuseToBeInstalled);
}

TEST(KarnoctlExplain, TellsWhichMarkerFilesLeadToTheDebugFeed) {
  FakePlatform machine;

  machine.files.addFile(kMarker, " \n");
  EXPECT_EQ(gatherExplanation(platform::host()).feedSource, FeedSource::DebugFeed);

  machine.files.addFile(kMarker, "two words");
  EXPECT_EQ(gatherExplanation(platform::host()).feedSource, FeedSource::DebugFeed);

  machine.files.addFile(kMarker, "https://example.org/feed.xml");
  EXPECT_EQ(gatherExplanation(platform::host()).feedSource, FeedSource::NamedByMarker);
}

TEST(AdministratorsValue, CountsOnlyAsText) {
  EXPECT_EQ(readingText({.key = "KEY", .value = "TRUE", .isForced = true, .readAs = KarnoTristate::On}),
            "\"TRUE\": on");
  EXPECT_EQ(readingText({.key = "KEY", .value = "", .isForced = true, .readAs = KarnoTristate::Off}),
            "\"\": off");
  EXPECT_EQ(readingText({.key = "KEY", .value = true, .isForced = true, .readAs = KarnoTristate::NotSet}),
            "<true/> is not a text and does not count");
  EXPECT_EQ(readingText({.key = "KEY"}), "not set");
}

TEST(AdministratorsValue, IsSpelledAsInAPropertyListWhereItDoesNotCount) {
  const auto text = [](platform::Value value) {
    return readingText({.key = "KEY", .value = std::move(value)});
  };

  EXPECT_EQ(text(false), "<false/> is not a text and does not count");
  EXPECT_EQ(text(1), "<integer>1</integer> is not a text and does not count");
  EXPECT_EQ(text(1.5), "<real>1.5</real> is not a text and does not count");
  EXPECT_EQ(text(platform::Value::Array{"YES"}), "<array> is not a text and does not count");
  EXPECT_EQ(text(platform::Value::Dictionary{}), "<dict> is not a text and does not count");
  EXPECT_EQ(text(platform::Value::Data{}), "<data> is not a text and does not count");
  EXPECT_EQ(text(test::kStartOfTest), "<date> is not a text and does not count");
}

TEST(KarnoctlExplain, TellsWhichMacFUSEWouldDo) {
  FakePlatform machine;
  Terminal terminal;
  machine.withSystem("14.5", "arm64").withFuse("4.4.0").withFirstStartup(false);

  terminal.run({"explain"});

  EXPECT_NE(
      terminal.out().find("The system check stops the start: the user is asked to install a newer macFUSE: "
                          "macFUSE 4.4.0 is there; 4.4.1 or later would do.\n"),
      std::string::npos)
      << terminal.out();
}

TEST(KarnoctlExplain, SaysWhenNoMacFUSEWillDoAndWhichMacOSWould) {
  FakePlatform machine;
  Terminal terminal;
  machine.withSystem("13.0", "arm64").withFuse("4.4.1").withFirstStartup(false);

  terminal.run({"explain"});

  EXPECT_NE(
      terminal.out().find("macFUSE 4.4.1 is there, and none would do: one would on macOS 13.0.0 or later, or "
                          "on macOS 12 or earlier, and 13.0 counts as older than 13.0.0.\n"),
      std::string::npos)
      << terminal.out();
}

TEST(KarnoctlExplain, NamesAManagedFileThatIsDamaged) {
  FakePlatform machine;
  Terminal terminal;
  machine.files.addFile("/Library/Managed Preferences/it.vantul.KarnoAdmin.plist", "<plist><dict>");
  machine.files.addFile("/Library/Managed Preferences/tester/it.vantul.KarnoAdmin.plist",
                        "<plist><dict/></plist>");

  terminal.run({"explain"});

  EXPECT_NE(terminal.out().find(
                "\nSettings\n  /Library/Managed Preferences/it.vantul.KarnoAdmin.plist is damaged ("),
            std::string::npos)
      << terminal.out();
  EXPECT_EQ(terminal.out().find("tester/it.vantul"), std::string::npos);
}

TEST(KarnoctlExplain, HasPlainMarksWhereTheLocaleHasNoOthers) {
  FakePlatform machine;
  Terminal terminal;
  machine.withSystem("14.5", "x86_64").withFuse("3.11.2");
  terminal.becomePlain();

  terminal.run({"explain"});

  EXPECT_NE(terminal.out().find("  - arm64   4.4.1+ "), std::string::npos) << terminal.out();
  EXPECT_NE(terminal.out().find("  + x86_64  3.11.2+ "), std::string::npos) << terminal.out();
}

TEST(KarnoctlExplain, SpeaksJsonToScripts) {
  FakePlatform machine;
  Terminal terminal;
  machine.withSystem("14.5", "x86_64").withFuse("3.11.2").withFirstStartup(false).withEmbeddedBuilds();
  machine.withAdmin("UPDATES_ENABLED", true);

  const int status = terminal.run({"explain", "--json"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(nlohmann::json::parse(terminal.out()), nlohmann::json::parse(R"({
    "version": 1,
    "build": "fuse",
    "because": "already-using-fuse",
    "bundle": "Karno(Fuse).app",
    "bundleIsThere": true,
    "systemCheck": "passes-with-fuse",
    "move": {"asks": false, "because": "in-applications-folder", "bundle": "/Applications/Karno.app",
             "place": null, "diskImage": null, "destination": null, "replaces": false,
             "needsPassword": false},
    "system": {
      "macOS": "14.5",
      "processor": "x86_64",
      "macFUSE": "3.11.2",
      "macFUSEFile": "/Library/Frameworks/macFUSE.framework/Resources/Info.plist"
    },
    "macFUSENeeded": "3.11.2",
    "macOSNeeded": null,
    "requirements": [
      {"processor": "arm64", "macFUSE": "4.4.1", "macOSFrom": "13.0.0", "macOSTo": null,
       "met": false, "objection": "this Mac has x86_64"},
      {"processor": "arm64", "macFUSE": "4.0.4", "macOSFrom": null, "macOSTo": "12",
       "met": false, "objection": "this Mac has x86_64"},
      {"processor": "x86_64", "macFUSE": "3.11.2", "macOSFrom": null, "macOSTo": null,
       "met": true, "objection": null}
    ],
    "feed": {"url": "https://updates.vantul.it/updates/macos/appcast.eddsa.xml", "source": "deployment"},
    "settings": {
      "USE_FILE_PROVIDER": {"stored": null, "forced": false, "readAs": "not-set"},
      "UPDATES_ENABLED": {"stored": true, "forced": true, "readAs": "not-set"},
      "useFileProviderVerified": {"stored": null, "readAs": false},
      "useFileProvider": {"stored": null, "readAs": false},
      "isFirstStartup": {"stored": false, "readAs": false},
      "verboseLogging": {"stored": null, "readAs": false}
    },
    "damagedFiles": []
  })"));
}

}  // namespace
}  // namespace karno::karnoctl
