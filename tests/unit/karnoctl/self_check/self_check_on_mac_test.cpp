#include <gtest/gtest.h>

#include <cerrno>

#include "made_up_programs.h"
#include "self_check_fixture.h"

namespace karno::karnoctl {
namespace {

using test::CompleteBundle;
using test::ELF;
using test::MachO;
using test::universal;

class KarnoctlSelfCheckOnAMac : public test::SelfCheckedMachine {
 protected:
  KarnoctlSelfCheckOnAMac() { bundle_.becomeMacBundle(); }
};

TEST_F(KarnoctlSelfCheckOnAMac, SaysThatNothingIsWrong) {
  EXPECT_EQ(
      said(),
      "Nothing is wrong with /Applications/Karno.app: 4 programs, 9 property lists, 8 tables of texts and "
      "211 messages to the system were checked.\n");
  EXPECT_EQ(terminal_.runtime().loaded,
            std::vector<std::string>{"/Applications/Karno.app/Contents/Frameworks/Sparkle.framework"});
}

TEST_F(KarnoctlSelfCheckOnAMac, MissesTheIconThatIsNamed) {
  EXPECT_EQ(saidAboutInformation("CFBundleIconFile", "Other"),
            "Contents/Resources/Other.icns is missing: the launcher has no icon.\n");

  bundle_.write("Contents/Resources/Other.icns", "the icon");
  EXPECT_EQ(terminal_.run({"self-check"}), 0);
}

TEST_F(KarnoctlSelfCheckOnAMac, MissesTheNameOfTheIcon) {
  bundle_.information.erase("CFBundleIconFile");
  bundle_.writeInformation();

  EXPECT_EQ(said(), "Contents/Info.plist has no CFBundleIconFile: the launcher has no icon.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, NamesALanguageWithoutAReasonThatMacOSGives) {
  bundle_.writeList(CompleteBundle::table("de", "InfoPlist.strings"), {});

  EXPECT_EQ(
      said(),
      "Contents/Resources/de.lproj/InfoPlist.strings has no text for \"NSAppleEventsUsageDescription\": "
      "the base language stands in.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, NamesALanguageWithoutATitleOfTheMenus) {
  bundle_.writeList(CompleteBundle::table("de", "MainMenu.strings"), {});

  EXPECT_EQ(said(),
            "Contents/Resources/de.lproj/MainMenu.strings has no text for \"Quit Karno\": the base language "
            "stands in.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, MissesTheFrameworkThatUpdates) {
  bundle_.remove("Contents/Frameworks/Sparkle.framework");

  EXPECT_EQ(
      said(),
      "Contents/Frameworks/Sparkle.framework is missing: updates never start, and the launcher does not "
      "quit when its client ends.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, NamesAFrameworkThatCannotBeLoaded) {
  terminal_.runtime().updater = platform::Error::posix(ENOEXEC);

  EXPECT_EQ(
      said(),
      "Contents/Frameworks/Sparkle.framework cannot be loaded (Exec format error): updates never start, "
      "and the launcher does not quit when its client ends.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, TellsWhatAFrameworkLacksFromWhatIsDoneWithout) {
  terminal_.runtime().updater = platform::MessageCensus{.lookedFor = 11,
                                                        .missing = {"-[SPUUpdater checkForUpdates]"},
                                                        .doneWithout = {"-[SPUUpdater clearFeed]"}};

  EXPECT_EQ(
      said(),
      "Contents/Frameworks/Sparkle.framework has no -[SPUUpdater checkForUpdates]: what the launcher does "
      "with it fails.\n"
      "Note: Contents/Frameworks/Sparkle.framework has no -[SPUUpdater clearFeed], which the launcher "
      "does without.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, WantsCodeForBothProcessors) {
  bundle_.write("Contents/MacOS/Karno", MachO{.processor = test::kAppleSilicon}.bytes());

  EXPECT_EQ(said(),
            "Contents/MacOS/Karno has no code for x86_64: the launcher cannot start on such a Mac.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, WantsSignatures) {
  bundle_.remove("Contents/_CodeSignature");
  bundle_.write(
      "Contents/Helpers/Karno.app/Contents/MacOS/Karno",
      universal({{.processor = test::kIntel, .isSigned = false}, {.processor = test::kAppleSilicon}}));

  EXPECT_EQ(
      said(),
      "Contents/Helpers/Karno.app/Contents/MacOS/Karno is not signed (its code for x86_64): macOS may "
      "refuse it.\n"
      "Contents/_CodeSignature/CodeResources is missing: the bundle as a whole is not signed, and macOS "
      "may refuse it.\n");
}

TEST_F(KarnoctlSelfCheckOnAMac, NamesAProgramOfLinux) {
  bundle_.write("Contents/MacOS/Karno", ELF{}.bytes());

  EXPECT_EQ(said(), "Contents/MacOS/Karno is a program for Linux: the launcher cannot start here.\n");
}

}  // namespace
}  // namespace karno::karnoctl
