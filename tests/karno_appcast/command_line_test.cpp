#include <gtest/gtest.h>

#include "release_manager.h"

namespace karno::appcast::test {
namespace {

TEST(AppcastCommandLine, TellsItsVersion) {
  ReleaseManager manager;

  EXPECT_EQ(manager.run({"--version"}), 0);
  EXPECT_EQ(manager.out(), "karno-appcast 1.2.3\n");
}

TEST(AppcastCommandLine, HelpListsTheVerbs) {
  ReleaseManager manager;

  EXPECT_EQ(manager.run({"--help"}), 0);
  EXPECT_EQ(manager.out(),
            "Usage: karno-appcast VERB [ARGUMENT...]\n"
            "       karno-appcast help [VERB]\n"
            "       karno-appcast --help | --version\n"
            "\n"
            "Signs releases of the launcher and writes the feed that offers them.\n"
            "\n"
            "Verbs:\n"
            "  keys       make the pair of keys that releases are signed and checked with\n"
            "  public-key print the public key that belongs to a private one\n"
            "  sign       print the signature of one archive\n"
            "  verify     check an archive as a launcher does\n"
            "  feed       write or extend a feed from a folder of releases\n"
            "  rotate     write a feed whose newest release hands over to a new key\n"
            "  check      read a published feed as a launcher would\n"
            "  help       say how a verb is used\n"
            "\n"
            "Exit status: 0 done, 1 failed, 64 wrong usage.\n");
}

TEST(AppcastCommandLine, EveryVerbExplainsItselfBothWays) {
  ReleaseManager manager;

  EXPECT_EQ(manager.run({"help", "public-key"}), 0);
  EXPECT_EQ(manager.out(),
            "Usage: karno-appcast public-key --private FILE\n"
            "\n"
            "Prints the public key, for SUPublicEDKey in the bundle's Info.plist.\n");
  const std::string text = manager.out();
  EXPECT_EQ(manager.run({"public-key", "--help", "whatever follows"}), 0);
  EXPECT_EQ(manager.out(), text);
}

// What stands on standard error for a command line that is wrong.
class WrongUsage : public testing::Test {
 protected:
  std::string error(const std::vector<std::string>& arguments) {
    const int status = manager_.run(arguments);
    return status == 64 && manager_.out().empty() ? manager_.err() : "";
  }

  ReleaseManager manager_;
};

TEST_F(WrongUsage, OfTheProgram) {
  const std::string hint = "Try \"karno-appcast --help\".\n";

  EXPECT_EQ(error({}), "karno-appcast: what is to be done? (no verb given)\n" + hint);
  EXPECT_EQ(error({"fed"}), "karno-appcast: unknown verb 'fed'; did you mean 'feed'?\n" + hint);
  EXPECT_EQ(error({"--verbose"}), "karno-appcast: unknown option '--verbose'\n" + hint);
  EXPECT_EQ(error({"--help", "feed"}), "karno-appcast: --help stands alone\n" + hint);
  EXPECT_EQ(error({"help", "feed", "sign"}), "karno-appcast: help takes one verb at most\n" + hint);
}

TEST_F(WrongUsage, OfAVerb) {
  const std::string hint = "Try \"karno-appcast help sign\".\n";

  EXPECT_EQ(error({"sign"}), "karno-appcast: sign needs ARCHIVE\n" + hint);
  EXPECT_EQ(error({"sign", "a.zip"}), "karno-appcast: sign needs --private\n" + hint);
  EXPECT_EQ(error({"sign", "a.zip", "b.zip"}),
            "karno-appcast: one ARCHIVE at a time, not 'a.zip' and 'b.zip'\n" + hint);
  EXPECT_EQ(error({"sign", "a.zip", "--private"}), "karno-appcast: --private needs a value\n" + hint);
  EXPECT_EQ(error({"sign", "a.zip", "--private="}), "karno-appcast: --private needs a value\n" + hint);
  EXPECT_EQ(error({"sign", "--private", "x", "--private", "y"}),
            "karno-appcast: --private is there twice\n" + hint);
  EXPECT_EQ(error({"sign", "--privat", "x"}),
            "karno-appcast: unknown option '--privat'; did you mean '--private'?\n" + hint);
  EXPECT_EQ(error({"sign", "--help=x"}),
            "karno-appcast: unknown option '--help=x'; did you mean '--help'?\n" + hint);
  EXPECT_EQ(error({"keys", "x"}),
            "karno-appcast: keys takes no argument 'x'\nTry \"karno-appcast help keys\".\n");
}

TEST_F(WrongUsage, TwoDashesEndTheOptions) {
  EXPECT_EQ(manager_.run({"sign", "--private", manager_.keyFile(), "--", "--none.zip"}), 1);
  EXPECT_EQ(manager_.err(), "karno-appcast: cannot read --none.zip: No such file or directory\n");
}

}  // namespace
}  // namespace karno::appcast::test
