#include "installer/arguments.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace karno::installer {
namespace {

using Words = std::vector<std::string>;

const Words kUnpack{"unpack", "--archive", "a.zip",     "--signature", "c2ln",  "--public-key",
                    "a2V5",   "--bundle",  "Karno.app", "--into",      "folder"};
const Words kInstall{"install", "--new", "n/Karno.app", "--bundle", "Karno.app", "--after", "4711"};

Words with(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

std::string errorOf(const Words& words) {
  const Command command = parseArguments(words);
  const auto* error = std::get_if<UsageError>(&command);
  return error == nullptr ? "(none)" : error->text;
}

TEST(Arguments, OfUnpackNameAllThatIsNeeded) {
  const Command command = parseArguments(with(kUnpack, {"--length", "12345678901"}));

  const auto& request = std::get<UnpackRequest>(command);
  EXPECT_EQ(request.archive, "a.zip");
  EXPECT_EQ(request.lengthInBytes, 12345678901U);
  EXPECT_EQ(request.signature, "c2ln");
  EXPECT_EQ(request.publicKey, "a2V5");
  EXPECT_EQ(request.bundle, "Karno.app");
  EXPECT_EQ(request.into, "folder");
}

TEST(Arguments, OfUnpackMayLeaveOutTheLength) {
  const Command command = parseArguments(kUnpack);

  EXPECT_EQ(std::get<UnpackRequest>(command).lengthInBytes, std::nullopt);
}

TEST(Arguments, OfUnpackMayHaveAnEmptySignature) {
  Words words = kUnpack;
  words[4] = "";

  EXPECT_EQ(std::get<UnpackRequest>(parseArguments(words)).signature, "");
}

TEST(Arguments, OfInstallGiveUpAfterTenMinutesUnlessTheySayOtherwise) {
  const Command command = parseArguments(kInstall);

  const auto& install = std::get<InstallCommand>(command);
  EXPECT_EQ(install.request.newBundle, "n/Karno.app");
  EXPECT_EQ(install.request.bundle, "Karno.app");
  EXPECT_EQ(install.request.after, 4711);
  EXPECT_EQ(install.request.giveUpAfter, std::chrono::seconds(600));
  EXPECT_FALSE(install.relaunch);
}

TEST(Arguments, OfInstallComeInAnyOrder) {
  const Command command = parseArguments(
      Words{"install", "--relaunch", "--give-up", "5", "--after", "1", "--bundle", "b", "--new", "n"});

  const auto& install = std::get<InstallCommand>(command);
  EXPECT_EQ(install.request.newBundle, "n");
  EXPECT_EQ(install.request.giveUpAfter, std::chrono::seconds(5));
  EXPECT_TRUE(install.relaunch);
}

TEST(Arguments, AskForHelpAndVersionAlone) {
  EXPECT_TRUE(std::holds_alternative<HelpCommand>(parseArguments(Words{"--help"})));
  EXPECT_TRUE(std::holds_alternative<VersionCommand>(parseArguments(Words{"--version"})));
  EXPECT_EQ(errorOf({"--help", "me"}), "--help stands alone");
}

TEST(Arguments, AreRefusedWhereSomethingIsWrong) {
  EXPECT_EQ(errorOf({}), "no command given");
  EXPECT_EQ(errorOf({"explode"}), "unknown command 'explode'");
  EXPECT_EQ(errorOf({"unpack"}), "--archive is missing");
  EXPECT_EQ(errorOf(with(kUnpack, {"--force", "1"})), "unknown option '--force'");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length"})), "--length needs a value");
  EXPECT_EQ(errorOf(with(kUnpack, {"--into", "x"})), "--into is given twice");
  EXPECT_EQ(errorOf(with(kUnpack, {"--relaunch"})), "unknown option '--relaunch'");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b"}), "--after is missing");
}

TEST(Arguments, TakeOnlyNumbersThatFit) {
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "-1"})), "no number for --length: '-1'");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "1x"})), "no number for --length: '1x'");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", ""})), "no number for --length: ''");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "9223372036854775808"})),
            "no number for --length: '9223372036854775808'");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b", "--after", "0"}),
            "no number for --after: '0'");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b", "--after", "2147483648"}),
            "no number for --after: '2147483648'");
  EXPECT_EQ(errorOf(with(kInstall, {"--give-up", "604801"})), "no number for --give-up: '604801'");
}

TEST(Arguments, TakeTheNumbersAtTheEdges) {
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "0"})), "(none)");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "9223372036854775807"})), "(none)");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b", "--after", "2147483647"}), "(none)");
  EXPECT_EQ(errorOf(with(kInstall, {"--give-up", "0"})), "(none)");
  EXPECT_EQ(errorOf(with(kInstall, {"--give-up", "604800"})), "(none)");
}

}  // namespace
}  // namespace karno::installer
