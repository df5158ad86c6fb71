#include "installer/arguments.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "command_line/program.h"

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

// What the program would do for these words.
struct Understood {
  std::optional<UnpackRequest> unpack;
  std::optional<InstallRequest> install;
  bool relaunch = false;
  std::string touchfile;
  std::string error;  // without the hint that follows it
};

Understood understood(const Words& words) {
  Understood result;
  const auto unpack = [&](const UnpackRequest& request) {
    result.unpack = request;
    return 0;
  };
  const auto install = [&](const InstallRequest& request, const Aftermath& aftermath) {
    result.install = request;
    result.relaunch = aftermath.relaunch;
    result.touchfile = aftermath.touchfile;
    return 0;
  };
  std::ostringstream out;
  std::ostringstream err;
  command_line::run({.name = "installer",
                     .version = {},
                     .purpose = {},
                     .exitStatuses = {},
                     .verbs = {unpackVerb(unpack), installVerb(install)}},
                    words, out, err);
  result.error = err.str().substr(0, err.str().find('\n'));
  return result;
}

std::string errorOf(const Words& words) { return understood(words).error; }

TEST(InstallerArguments, OfUnpackNameAllThatIsNeeded) {
  const Understood result = understood(with(kUnpack, {"--length", "12345678901"}));

  ASSERT_TRUE(result.unpack) << result.error;
  EXPECT_EQ(result.unpack->archive, "a.zip");
  EXPECT_EQ(result.unpack->lengthInBytes, 12345678901U);
  EXPECT_EQ(result.unpack->signature, "c2ln");
  EXPECT_EQ(result.unpack->publicKey, "a2V5");
  EXPECT_EQ(result.unpack->bundle, "Karno.app");
  EXPECT_EQ(result.unpack->into, "folder");
}

TEST(InstallerArguments, OfUnpackMayLeaveOutTheLength) {
  const Understood result = understood(kUnpack);

  ASSERT_TRUE(result.unpack) << result.error;
  EXPECT_EQ(result.unpack->lengthInBytes, std::nullopt);
}

TEST(InstallerArguments, OfUnpackMayHaveAnEmptySignature) {
  Words words = kUnpack;
  words[4] = "";

  const Understood result = understood(words);

  ASSERT_TRUE(result.unpack) << result.error;
  EXPECT_EQ(result.unpack->signature, "");
}

TEST(InstallerArguments, OfInstallGiveUpAfterTenMinutes) {
  const Understood result = understood(kInstall);

  ASSERT_TRUE(result.install) << result.error;
  EXPECT_EQ(result.install->newBundle, "n/Karno.app");
  EXPECT_EQ(result.install->bundle, "Karno.app");
  EXPECT_EQ(result.install->after, 4711);
  EXPECT_EQ(result.install->giveUpAfter, std::chrono::seconds(600));
  EXPECT_FALSE(result.relaunch);
}

TEST(InstallerArguments, OfInstallMayAskForARelaunch) {
  const Understood result =
      understood({"install", "--relaunch", "--after", "1", "--bundle", "b", "--new", "n"});

  ASSERT_TRUE(result.install) << result.error;
  EXPECT_EQ(result.install->newBundle, "n");
  EXPECT_TRUE(result.relaunch);
  EXPECT_EQ(result.touchfile, "");
}

TEST(InstallerArguments, OfInstallMayNameATouchFile) {
  const Understood result =
      understood({"install", "--touch-file", "t", "--after", "1", "--bundle", "b", "--new", "n"});

  ASSERT_TRUE(result.install) << result.error;
  EXPECT_EQ(result.touchfile, "t");
}

TEST(InstallerArguments, AreRefusedWhereSomethingIsWrong) {
  EXPECT_EQ(errorOf({}), "installer: what is to be done? (no verb given)");
  EXPECT_EQ(errorOf({"explode"}), "installer: unknown verb 'explode'");
  EXPECT_EQ(errorOf({"unpack"}), "installer: unpack needs --archive");
  EXPECT_EQ(errorOf(with(kUnpack, {"--force", "1"})), "installer: unknown option '--force'");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length"})), "installer: --length needs a value");
  EXPECT_EQ(errorOf(with(kUnpack, {"--into", "x"})), "installer: --into is there twice");
  EXPECT_EQ(errorOf(with(kUnpack, {"--relaunch"})), "installer: unknown option '--relaunch'");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b"}), "installer: install needs --after");
}

TEST(InstallerArguments, TakeOnlyNumbersThatFit) {
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "-1"})), "installer: no number for --length: '-1'");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "1x"})), "installer: no number for --length: '1x'");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "9223372036854775808"})),
            "installer: no number for --length: '9223372036854775808'");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b", "--after", "0"}),
            "installer: no number for --after: '0'");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b", "--after", "2147483648"}),
            "installer: no number for --after: '2147483648'");
}

TEST(InstallerArguments, TakeTheNumbersAtTheEdges) {
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "0"})), "");
  EXPECT_EQ(errorOf(with(kUnpack, {"--length", "9223372036854775807"})), "");
  EXPECT_EQ(errorOf({"install", "--new", "n", "--bundle", "b", "--after", "2147483647"}), "");
}

}  // namespace
}  // namespace karno::installer
