#include <gtest/gtest.h>

#include <cerrno>
#include <nlohmann/json.hpp>

#include "karnoctl/self_check/self_check.h"
#include "made_up_programs.h"
#include "self_check_fixture.h"

namespace karno::karnoctl {
namespace {

using platform::Value;
using test::CompleteBundle;
using test::ELF;
using test::MachO;

constexpr const char* kAllIsFine =
    "Nothing is wrong with /Applications/Karno.app: 5 programs, 5 property lists, 6 tables of texts and 200 "
    "messages to the system were checked.\n";

using KarnoctlSelfCheck = test::SelfCheckedMachine;

TEST_F(KarnoctlSelfCheck, SaysThatNothingIsWrong) {
  EXPECT_EQ(said(), kAllIsFine);
  EXPECT_EQ(status_, 0);
}

TEST_F(KarnoctlSelfCheck, NotesAClientWithTheSettingsDomainButForCase) {
  EXPECT_EQ(saidInFull(), std::string(kClientNote) + kAllIsFine);
  EXPECT_EQ(status_, 0);
}

TEST_F(KarnoctlSelfCheck, NotesNothingOfAClientWithAnotherIdentifier) {
  bundle_.writeList("Contents/Helpers/Karno.app/Contents/Info.plist",
                    {{"CFBundleExecutable", "Karno"}, {"CFBundleIdentifier", "it.vantul.KarnoFiles"}});

  EXPECT_EQ(saidInFull(),
            "Contents/Helpers/Karno.app/Contents/Info.plist has the CFBundleIdentifier it.vantul.KarnoFiles "
            "instead of it.vantul.Karno: a restart cannot tell whether the client still runs.\n");
}

TEST_F(KarnoctlSelfCheck, ChecksTheBundleThatIsNamed) {
  machine_.files.addDirectory("/Volumes/Disk");
  machine_.files.move("/Applications/Karno.app", "/Volumes/Disk/Karno.app");
  terminal_.runtime().program = "/usr/local/bin/karnoctl";
  machine_.files.addFile("/usr/local/bin/karnoctl", ELF{}.bytes());

  EXPECT_EQ(terminal_.run({"self-check", "/Volumes/Disk/Karno.app/"}), 0);

  EXPECT_EQ(
      withoutClientNote(terminal_.out()),
      "Nothing is wrong with /Volumes/Disk/Karno.app: 5 programs, 5 property lists, 6 tables of texts and "
      "200 messages to the system were checked.\n");
}

TEST_F(KarnoctlSelfCheck, SpeaksJsonToScripts) {
  bundle_.remove("Contents/Helpers/Karno.app");
  bundle_.remove("Contents/Helpers/karno-installer");
  terminal_.runtime().system.doneWithout = {"-[NSApplication setActivationPolicy:]"};

  EXPECT_EQ(terminal_.run({"self-check", "--json"}), 1);

  EXPECT_EQ(nlohmann::json::parse(terminal_.out()), nlohmann::json::parse(R"({
    "version": 1,
    "bundle": "/Applications/Karno.app",
    "fine": false,
    "wrong": ["Contents/Helpers/Karno.app is missing: the File Provider build cannot start.",
              "Contents/Helpers/karno-installer is missing: no update can be installed."],
    "notes": ["This system has no -[NSApplication setActivationPolicy:], which the launcher does without."],
    "checked": {"programs": 3, "propertyLists": 4, "tables": 6, "messages": 200}
  })"));
}

TEST_F(KarnoctlSelfCheck, WantsABundleWhereItLiesInNone) {
  terminal_.runtime().program = "/usr/local/bin/karnoctl";

  EXPECT_EQ(terminal_.run({"self-check"}), 64);

  EXPECT_EQ(
      terminal_.err(),
      "karnoctl: which bundle? (this karnoctl does not lie in one)\nTry \"karnoctl help self-check\".\n");
}

TEST_F(KarnoctlSelfCheck, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(terminal_.run({"self-check", "--fast"}), 64);
  EXPECT_EQ(terminal_.run({"self-check", "a.app", "b.app"}), 64);
  EXPECT_EQ(terminal_.run({"self-check", ""}), 64);

  EXPECT_EQ(terminal_.err(),
            "karnoctl: unknown option '--fast'\nTry \"karnoctl help self-check\".\n"
            "karnoctl: one bundle at a time, not 'a.app' and 'b.app'\n"
            "Try \"karnoctl help self-check\".\n"
            "karnoctl: the path of the bundle is empty\nTry \"karnoctl help self-check\".\n");
}

TEST_F(KarnoctlSelfCheck, ExplainsItself) {
  EXPECT_EQ(terminal_.run({"self-check", "--help"}), 0);

  EXPECT_TRUE(terminal_.out().starts_with("Usage: karnoctl self-check [--json] [BUNDLE]\n\n"))
      << terminal_.out();
}

TEST_F(KarnoctlSelfCheck, NeedsItsOwnProgram) {
  bundle_.remove("Contents/MacOS/karnoctl");

  EXPECT_EQ(said(), "");

  EXPECT_EQ(status_, 1);
  EXPECT_EQ(terminal_.err(), "karnoctl: cannot read its own program: No such file or directory\n");
}

TEST_F(KarnoctlSelfCheck, SaysThatThereIsNoBundle) {
  EXPECT_EQ(terminal_.run({"self-check", "/nowhere/Karno.app"}), 1);

  EXPECT_EQ(terminal_.out(), "There is nothing at /nowhere/Karno.app.\n");
}

TEST_F(KarnoctlSelfCheck, SaysThatAFileIsNoBundle) {
  machine_.files.addFile("/Users/tester/Karno.app", "text");

  EXPECT_EQ(terminal_.run({"self-check", "/Users/tester/Karno.app"}), 1);

  EXPECT_EQ(terminal_.out(), "/Users/tester/Karno.app is a file, and no bundle.\n");
}

TEST_F(KarnoctlSelfCheck, MissesTheInformation) {
  bundle_.remove("Contents/Info.plist");

  EXPECT_EQ(said(),
            "Contents/Info.plist is missing: the launcher has no version and no updates, and a Mac does not "
            "start it at all.\n");
  EXPECT_EQ(status_, 1);
}

TEST_F(KarnoctlSelfCheck, NamesDamagedInformation) {
  bundle_.write("Contents/Info.plist", "This is no property list.");

  EXPECT_EQ(
      said(),
      "Contents/Info.plist is damaged (The property list cannot be read: line 1: there is text where a "
      "tag belongs): the launcher has no version and no updates, and a Mac does not start it at all.\n");
}

TEST_F(KarnoctlSelfCheck, NamesInformationOfAnotherKind) {
  bundle_.write("Contents/Info.plist", "<plist><array/></plist>");

  EXPECT_EQ(
      said(),
      "Contents/Info.plist is no dictionary: the launcher has no version and no updates, and a Mac does "
      "not start it at all.\n");
}

TEST_F(KarnoctlSelfCheck, NamesInformationThatIsFarTooLarge) {
  machine_.files.setSize(CompleteBundle::path("Contents/Info.plist"), 5'000'000);

  EXPECT_EQ(
      said(),
      "Contents/Info.plist is far too large: the launcher has no version and no updates, and a Mac does "
      "not start it at all.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAFolderInThePlaceOfAFile) {
  bundle_.remove("Contents/Info.plist");
  machine_.files.addDirectory(CompleteBundle::path("Contents/Info.plist"));

  EXPECT_EQ(said(),
            "Contents/Info.plist is a folder: the launcher has no version and no updates, and a Mac does not "
            "start it at all.\n");
}

TEST_F(KarnoctlSelfCheck, NamesKeysThatAreMissing) {
  bundle_.information.erase("CFBundleName");
  bundle_.information.erase("CFBundleIdentifier");
  bundle_.writeInformation();

  EXPECT_EQ(said(),
            "Contents/Info.plist has no CFBundleIdentifier: its updater and karnoctl take it for another "
            "application.\n"
            "Contents/Info.plist has no CFBundleName: the launcher has no name in menus and windows.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAnotherIdentifier) {
  EXPECT_EQ(saidAboutInformation("CFBundleIdentifier", "com.example.Other"),
            "Contents/Info.plist has the CFBundleIdentifier com.example.Other instead of "
            "it.vantul.KarnoWrapper: its updater and karnoctl take it for another application.\n");
}

TEST_F(KarnoctlSelfCheck, ShowsNoControlCharactersOfAFile) {
  EXPECT_EQ(
      saidAboutInformation("CFBundleIdentifier", "\x1b[2J\n\x7fx"),
      "Contents/Info.plist has the CFBundleIdentifier ^[[2J^J^?x instead of it.vantul.KarnoWrapper: its "
      "updater and karnoctl take it for another application.\n");
}

TEST_F(KarnoctlSelfCheck, NamesATextThatIsNone) {
  EXPECT_EQ(saidAboutInformation("CFBundleVersion", 1),
            "Contents/Info.plist has a CFBundleVersion that is no text: the updater cannot tell what is "
            "newer.\n");
}

TEST_F(KarnoctlSelfCheck, NamesATruthThatIsNone) {
  EXPECT_EQ(saidAboutInformation("LSUIElement", "YES"),
            "Contents/Info.plist has a LSUIElement that is no truth value: the launcher stays in the Dock "
            "beside its client.\n");
}

TEST_F(KarnoctlSelfCheck, NamesANumberThatIsNone) {
  EXPECT_EQ(
      saidAboutInformation("SUScheduledCheckInterval", true),
      "Contents/Info.plist has a SUScheduledCheckInterval that is no number: the updater chooses when it "
      "looks for updates.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAListThatIsNone) {
  EXPECT_EQ(
      saidAboutInformation("CFBundleLocalizations", Value::Array{"en", 1}),
      "Contents/Info.plist has a CFBundleLocalizations that is no list of texts: all texts are shown in "
      "the base language.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAHostThatIsNone) {
  EXPECT_EQ(saidAboutInformation("KarnoUpdateFeedHost", "https://updates.vantul.it"),
            "Contents/Info.plist has a KarnoUpdateFeedHost that is no name of a host: nothing can be fetched "
            "from there.\n");
  EXPECT_EQ(saidAboutInformation("KarnoUpdateFeedHost", ""),
            "Contents/Info.plist has a KarnoUpdateFeedHost that is no name of a host: updates come from the "
            "host that the launcher has built in.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAKeyThatIsNone) {
  EXPECT_EQ(saidAboutInformation("SUPublicEDKey", "11qYAYKxCrfVS"),
            "Contents/Info.plist has a SUPublicEDKey that is no key of 32 bytes in base64: no update is "
            "taken.\n");
}

TEST_F(KarnoctlSelfCheck, RemarksOnTheKeyThatNobodyHas) {
  EXPECT_EQ(
      saidAboutInformation("SUPublicEDKey", std::string(publicKeyOfNobody())),
      std::string("Note: Contents/Info.plist has the SUPublicEDKey of a build without a key of its own, "
                  "whose private half nobody has: no update is taken.\n") +
          kAllIsFine);
  EXPECT_EQ(status_, 0);
}

TEST_F(KarnoctlSelfCheck, MissesTheIconOfLinux) {
  bundle_.remove("Contents/Resources/karno.png");

  EXPECT_EQ(said(), "Contents/Resources/karno.png is missing: the launcher has no icon.\n");
}

TEST_F(KarnoctlSelfCheck, MissesTheLaunchersProgram) {
  bundle_.remove("Contents/MacOS/Karno");

  EXPECT_EQ(said(), "Contents/MacOS/Karno is missing: the launcher cannot start.\n");
}

TEST_F(KarnoctlSelfCheck, LooksForTheProgramThatIsNamed) {
  EXPECT_EQ(saidAboutInformation("CFBundleExecutable", "Starter"),
            "Contents/MacOS/Starter is missing: the launcher cannot start.\n");
}

TEST_F(KarnoctlSelfCheck, MissesBothClients) {
  bundle_.remove("Contents/Helpers");

  EXPECT_EQ(said(),
            "Contents/Helpers/Karno.app is missing: the File Provider build cannot start.\n"
            "Contents/Helpers/Karno(Fuse).app is missing: the FUSE build cannot start.\n"
            "Contents/Helpers/karno-installer is missing: no update can be installed.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAFileInThePlaceOfAClient) {
  bundle_.remove("Contents/Helpers/Karno.app");
  bundle_.write("Contents/Helpers/Karno.app", "text");

  EXPECT_EQ(said(), "Contents/Helpers/Karno.app is no folder: the File Provider build cannot start.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAClientUnderAnotherIdentifier) {
  bundle_.writeList("Contents/Helpers/Karno(Fuse).app/Contents/Info.plist",
                    {{"CFBundleExecutable", "Karno(Fuse)"}, {"CFBundleIdentifier", "it.vantul.Other"}});

  EXPECT_EQ(said(),
            "Contents/Helpers/Karno(Fuse).app/Contents/Info.plist has the CFBundleIdentifier it.vantul.Other "
            "instead of it.vantul.KarnoFuse: a restart cannot tell whether the client still runs.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAClientThatNamesNoProgram) {
  bundle_.writeList("Contents/Helpers/Karno.app/Contents/Info.plist",
                    {{"CFBundleExecutable", "../Karno"}, {"CFBundleIdentifier", "it.vantul.Karno"}});

  EXPECT_EQ(
      said(),
      "Contents/Helpers/Karno.app/Contents/Info.plist has no CFBundleExecutable that names a program: the "
      "File Provider build cannot start.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAProgramThatMayNotBeExecuted) {
  terminal_.runtime().notExecutable = {CompleteBundle::path("Contents/Helpers/karno-installer")};

  EXPECT_EQ(said(), "Contents/Helpers/karno-installer may not be executed: no update can be installed.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAProgramThatIsNone) {
  bundle_.write("Contents/Helpers/Karno.app/Contents/MacOS/Karno", "echo Karno\n");

  EXPECT_EQ(said(),
            "Contents/Helpers/Karno.app/Contents/MacOS/Karno is no program (its first bytes are those of no "
            "program): the File Provider build cannot start.\n");
}

TEST_F(KarnoctlSelfCheck, TakesAScriptForAProgram) {
  bundle_.write("Contents/Helpers/Karno.app/Contents/MacOS/Karno", "#!/bin/sh\n");

  EXPECT_TRUE(said().starts_with("Nothing is wrong")) << said();
}

TEST_F(KarnoctlSelfCheck, MissesTheInterpreterOfAScript) {
  bundle_.write("Contents/Helpers/Karno.app/Contents/MacOS/Karno", "#!/opt/bin/python3 -u\n");
  terminal_.runtime().notExecutable = {"/opt/bin/python3"};

  EXPECT_EQ(said(),
            "Contents/Helpers/Karno.app/Contents/MacOS/Karno is a script for /opt/bin/python3, which is not "
            "here: the File Provider build cannot start.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAProgramForAnotherProcessor) {
  bundle_.write("Contents/MacOS/Karno", ELF{.processor = test::kELFArm}.bytes());

  EXPECT_EQ(said(),
            "Contents/MacOS/Karno is built for arm64, and this machine has x86_64: the launcher cannot "
            "start.\n");
}

TEST_F(KarnoctlSelfCheck, NamesAProgramForAnotherSystem) {
  bundle_.write("Contents/MacOS/Karno", MachO{}.bytes());

  EXPECT_EQ(said(), "Contents/MacOS/Karno is a program for macOS: the launcher cannot start here.\n");
}

TEST_F(KarnoctlSelfCheck, MissesTheTableOfALanguage) {
  bundle_.remove(CompleteBundle::table("de", "Strings.json"));

  EXPECT_EQ(
      said(),
      "Contents/Resources/de.lproj/Strings.json is missing: its texts are shown in the base language.\n");
}

TEST_F(KarnoctlSelfCheck, MissesTheBaseTable) {
  bundle_.remove(CompleteBundle::table("Base", "Strings.json"));

  EXPECT_EQ(
      said(),
      "Contents/Resources/Base.lproj/Strings.json is missing: texts that the user's language lacks have "
      "no other to fall back on.\n");
}

TEST_F(KarnoctlSelfCheck, NamesADamagedTable) {
  bundle_.write(CompleteBundle::table("de", "Strings.json"), R"({"CANCEL": )");

  EXPECT_EQ(said(),
            "Contents/Resources/de.lproj/Strings.json is damaged (Not JSON from byte 12 on): its texts are "
            "shown in the base language.\n");
}

TEST_F(KarnoctlSelfCheck, NamesADamagedTableOfTheMove) {
  bundle_.write(CompleteBundle::table("de", "MoveApplication.strings"), "damaged");

  EXPECT_EQ(
      said(),
      "Contents/Resources/de.lproj/MoveApplication.strings is damaged (The property list cannot be read: "
      "line 1: there is text where a tag belongs): its texts are shown in the base language.\n");
}

TEST_F(KarnoctlSelfCheck, NamesTextsThatALanguageLacks) {
  bundle_.write(CompleteBundle::table("de", "Strings.json"), R"({"CANCEL": "", "OK": 1})");
  bundle_.writeList(CompleteBundle::table("de", "MoveApplication.strings"), {});

  EXPECT_EQ(said(),
            "Contents/Resources/de.lproj/Strings.json has no text for \"CANCEL\", \"OK\": the base language "
            "stands in.\n"
            "Contents/Resources/de.lproj/MoveApplication.strings has no text for \"Do Not Move\": the base "
            "language stands in.\n");
}

TEST_F(KarnoctlSelfCheck, NamesTheFirstOfManyTexts) {
  bundle_.write(CompleteBundle::table("Base", "Updater.json"),
                R"({"A": "a", "B": "b", "C": "c", "D": "d", "LATER": "Later"})");

  EXPECT_EQ(
      said(),
      "Contents/Resources/de.lproj/Updater.json has no text for \"A\", \"B\", \"C\" and 1 more: the base "
      "language stands in.\n");
}

TEST_F(KarnoctlSelfCheck, NamesTextsThatTheBaseLacks) {
  bundle_.write(CompleteBundle::table("Base", "Strings.json"), R"({"OK": "OK"})");

  EXPECT_EQ(
      said(),
      "Contents/Resources/Base.lproj/Strings.json has no text for \"CANCEL\": what stands for it in the "
      "code is shown instead.\n");
}

TEST_F(KarnoctlSelfCheck, LooksInNoFolderOutsideTheResources) {
  EXPECT_EQ(saidAboutInformation("CFBundleLocalizations", Value::Array{"en", "de", "../../x", ""}),
            kAllIsFine);
}

TEST_F(KarnoctlSelfCheck, NamesMessagesThatTheSystemLacks) {
  terminal_.runtime().system.missing = {"-[NSAlert runModal]"};

  EXPECT_EQ(said(), "This system has no -[NSAlert runModal]: what the launcher does with it fails.\n");
  EXPECT_EQ(status_, 1);
}

TEST_F(KarnoctlSelfCheck, NamesExceptionsThatEndTheLauncher) {
  terminal_.runtime().catchesExceptions = false;

  EXPECT_EQ(said(),
            "An exception of this system has not become an error: one can end the launcher at any time.\n");
  EXPECT_EQ(status_, 1);
}

}  // namespace
}  // namespace karno::karnoctl
