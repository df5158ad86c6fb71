#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "made_up_programs.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr std::chrono::seconds kSelfCheckLimit{30};
constexpr const char* kNote =
    "Note: Contents/Info.plist has the SUPublicEDKey of a build without a key of its own, whose private half "
    "nobody has: no update is taken.\n";
constexpr const char* kClientNote =
    "Note: Contents/Helpers/Karno.app/Contents/Info.plist has the CFBundleIdentifier it.vantul.Karno, the "
    "settings' domain it.vantul.karno but for case: on a disk that folds case its own preferences and the "
    "settings are one file.\n";
constexpr const char* kGermanTable = "Contents/Resources/de.lproj/Strings.json";
constexpr const char* kClient = "Contents/Helpers/Karno.app/Contents/MacOS/Karno";

std::string wholeFile(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

// The launcher's bundle on a machine, and what is done to it.
class SelfCheck : public testing::Test {
 protected:
  fs::path file(const std::string& name) const { return machine_.bundle() / name; }

  void overwrite(const std::string& name, const std::string& content) const {
    std::ofstream(file(name), std::ios::binary) << content;
  }

  void replace(const std::string& name, std::string_view text, std::string_view replacement) const {
    std::string content = wholeFile(file(name));
    const std::size_t place = content.find(text);
    ASSERT_NE(place, std::string::npos);
    overwrite(name, content.replace(place, text.size(), replacement));
  }

  // What karnoctl says of the bundle, without what it notes of every bundle as it is built.
  CommandResult check(const std::vector<std::string>& arguments = {}) const {
    std::vector<std::string> command{"/usr/bin/env",
                                     "-u",
                                     "DISPLAY",
                                     "HOME=" + machine_.home().string(),
                                     "KARNO_MACHINE_ROOT=" + machine_.root().string(),
                                     file("Contents/MacOS/karnoctl").string(),
                                     "self-check"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    CommandResult result = runCommand(command, kSelfCheckLimit);
    for (const std::string_view sentence : {kNote, kClientNote}) {
      if (const std::size_t note = result.output.find(sentence); note != std::string::npos) {
        result.output.erase(note, sentence.size());
      }
    }
    return result;
  }

  void sign(const std::string& authority) const {
    const std::string tool = (machine_.root() / "usr/bin/codesign").string();
    ASSERT_EQ(runCommand({tool, "--sign", authority, machine_.bundle().string()}, kSelfCheckLimit).status, 0);
  }

  const Machine machine_{builtTools()};
};

TEST_F(SelfCheck, FindsNothingWrongWithTheBundleAsItIsBuilt) {
  const CommandResult result = check();

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output,
              StartsWith(fmt::format("Nothing is wrong with {}: 5 programs, 14 property lists, 33 tables of "
                                     "texts and ",
                                     machine_.bundle().string())));
  EXPECT_EQ(std::ranges::count(result.output, '\n'), 1);
}

TEST_F(SelfCheck, FindsNothingWrongThroughALink) {
  fs::create_symlink(machine_.bundle(), machine_.root() / "link.app");

  const CommandResult result = check({machine_.root() / "link.app"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, StartsWith("Nothing is wrong with " + machine_.bundle().string() + ": "));
}

TEST_F(SelfCheck, SaysWhoseSignatureTheBundleHas) {
  sign("Developer ID Application: Vantul (ABCDE12345)");
  overwrite("Contents/CodeResources", "the notary's answer");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output,
              StartsWith("Note: The bundle is signed by Developer ID Application: Vantul (ABCDE12345).\n"
                         "Nothing is wrong with "));
}

TEST_F(SelfCheck, NamesASignatureThatDoesNotFit) {
  sign("Developer ID Application: Vantul (ABCDE12345)");
  overwrite("Contents/PkgInfo", "APPLKARN");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "The signature of the bundle does not fit (a sealed resource is missing or invalid): macOS may "
            "refuse to start it.\n");
}

TEST_F(SelfCheck, NotesABundleThatGatekeeperRejects) {
  sign("Developer ID Application: Vantul (ABCDE12345)");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(
      result.output,
      HasSubstr("Note: Gatekeeper rejects the bundle (Unnotarized Developer ID): a Mac that downloads "
                "it does not open it.\n"));
}

// Not every file system that tests run on keeps extended attributes.
TEST_F(SelfCheck, NotesQuarantineThatIsToldOfTheBundle) {
  std::ofstream(machine_.root() / "usr/bin/xattr") << "#!/bin/sh\necho \"$1 $2 $3;5f5e1000;Safari;\"\n";

  const CommandResult result = check();

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output,
              StartsWith("Note: The bundle is in quarantine, since it was brought by Safari: macOS asks"));
}

TEST_F(SelfCheck, NotesWhatCannotBeAskedWithoutItsTool) {
  fs::remove(machine_.root() / "usr/bin/xattr");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, StartsWith("Note: There is no /usr/bin/xattr here: whether the bundle is in "
                                        "quarantine was not checked.\nNothing is wrong with "));
}

TEST_F(SelfCheck, LeavesTheMachineAsItIs) {
  const auto before = fs::last_write_time(machine_.bundle() / "Contents");

  check();

  EXPECT_EQ(fs::last_write_time(machine_.bundle() / "Contents"), before);
  EXPECT_FALSE(fs::exists(machine_.logFile()));
}

TEST_F(SelfCheck, NamesAMissingTable) {
  fs::remove(file(kGermanTable));

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            std::string(kGermanTable) + " is missing: its texts are shown in the base language.\n");
}

TEST_F(SelfCheck, NamesADamagedTable) {
  overwrite(kGermanTable, "no JSON");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, std::string(kGermanTable) +
                               " is damaged (Not JSON from byte 2 on): its texts are shown in the base "
                               "language.\n");
}

TEST_F(SelfCheck, NamesADamagedTableOfTheMove) {
  overwrite("Contents/Resources/ja.lproj/MoveApplication.strings", "<plist>");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output, StartsWith("Contents/Resources/ja.lproj/MoveApplication.strings is damaged ("));
}

TEST_F(SelfCheck, NamesATableThatCannotBeRead) {
  fs::remove(file(kGermanTable));
  fs::create_symlink("Strings.json", file(kGermanTable));

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            std::string(kGermanTable) +
                " cannot be read (Too many levels of symbolic links): its texts are shown in the "
                "base language.\n");
}

TEST_F(SelfCheck, NamesABundleThatCannotBeRead) {
  const fs::path loop = machine_.root() / "loop.app";
  fs::create_symlink("loop.app", loop);

  const CommandResult result = check({loop});

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, loop.string() + " cannot be read (Too many levels of symbolic links).\n");
}

TEST_F(SelfCheck, NamesATextThatOneLanguageLacks) {
  replace(kGermanTable, "\"NOT_NOW\"", "\"NOT_NOW_\"");
  replace("Contents/Resources/Base.lproj/Strings.json", "{", "{\"NOT_NOW_\": \"x\",");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output, HasSubstr(std::string(kGermanTable) +
                                       " has no text for \"NOT_NOW\": the base language stands in.\n"));
}

TEST_F(SelfCheck, MissesBothClientsWithoutHelpers) {
  fs::remove_all(file("Contents/Helpers"));

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "Contents/Helpers/Karno.app is missing: the File Provider build cannot start.\n"
            "Contents/Helpers/Karno(Fuse).app is missing: the FUSE build cannot start.\n"
            "Contents/Helpers/karno-installer is missing: no update can be installed.\n");
}

TEST_F(SelfCheck, NamesAClientThatMayNotBeExecuted) {
  fs::permissions(file(kClient), fs::perms(0644));

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            std::string(kClient) + " may not be executed: the File Provider build cannot start.\n");
}

TEST_F(SelfCheck, NamesAProgramForAnotherProcessor) {
  fs::remove(file("Contents/MacOS/Karno"));
  overwrite("Contents/MacOS/Karno", ELF{.processor = 0xbeef}.bytes());
  fs::permissions(file("Contents/MacOS/Karno"), fs::perms(0755));

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output,
              StartsWith("Contents/MacOS/Karno is built for processor 48879, and this machine has "));
}

TEST_F(SelfCheck, NamesAProgramForAnotherSystem) {
  overwrite(kClient, universal({{.processor = kIntel}, {.processor = kAppleSilicon}}));

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            std::string(kClient) + " is a program for macOS: the File Provider build cannot start here.\n");
}

TEST_F(SelfCheck, NamesAProgramThatWasCutOff) {
  fs::resize_file(file(kClient), fs::file_size(file(kClient)) / 2);

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(
      result.output,
      std::string(kClient) + " is no program (its end is missing): the File Provider build cannot start.\n");
}

TEST_F(SelfCheck, MissesTheInformation) {
  fs::remove(file("Contents/Info.plist"));

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "Contents/Info.plist is missing: the launcher has no version and no updates, and a Mac does not "
            "start it at all.\n");
}

TEST_F(SelfCheck, NamesDamagedInformation) {
  overwrite("Contents/Info.plist", "This is no property list.\n");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output, StartsWith("Contents/Info.plist is damaged ("));
  EXPECT_THAT(result.output,
              HasSubstr("): the launcher has no version and no updates, and a Mac does not start "
                        "it at all.\n"));
}

TEST_F(SelfCheck, NamesAnotherIdentifier) {
  replace("Contents/Info.plist", "it.vantul.KarnoWrapper", "com.example.Other");

  const CommandResult result = check();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "Contents/Info.plist has the CFBundleIdentifier com.example.Other instead of "
            "it.vantul.KarnoWrapper: its updater and karnoctl take it for another application.\n");
}

TEST_F(SelfCheck, SaysThatThereIsNoBundle) {
  const CommandResult result = check({machine_.root() / "nowhere.app"});

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "There is nothing at " + (machine_.root() / "nowhere.app").string() + ".\n");
}

TEST_F(SelfCheck, WantsABundleWhenItLiesInNone) {
  const fs::path tool = machine_.root() / "karnoctl";
  fs::copy_file(file("Contents/MacOS/karnoctl"), tool);

  const CommandResult result = runCommand(
      {"/usr/bin/env", "HOME=" + machine_.home().string(), tool.string(), "self-check"}, kSelfCheckLimit);

  EXPECT_EQ(result.status, 64);
  EXPECT_EQ(
      result.output,
      "karnoctl: which bundle? (this karnoctl does not lie in one)\nTry \"karnoctl help self-check\".\n");
}

}  // namespace
}  // namespace karno::test
