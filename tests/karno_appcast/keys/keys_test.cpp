#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>

#include "forked_process.h"
#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using karno::test::contentOf;
using karno::test::ForkedProcess;
using ::testing::MatchesRegex;

mode_t modeOf(const std::string& path) {
  struct stat status = {};
  ::stat(path.c_str(), &status);
  return status.st_mode & 07777;
}

TEST(Keys, AreMadeInAFileThatOnlyTheOwnerReads) {
  ReleaseManager manager;
  const std::string file = manager.desk() / "new.key";

  const int status = manager.run({"keys", "--private", file});

  EXPECT_EQ(status, 0);
  EXPECT_THAT(manager.out(), MatchesRegex("[A-Za-z0-9+/]{43}=\n"));
  EXPECT_THAT(contentOf(file), MatchesRegex("[A-Za-z0-9+/]{43}=\n"));
  EXPECT_NE(contentOf(file), manager.out());
  EXPECT_EQ(modeOf(file), 0600U);
}

TEST(Keys, AreToldWhereThePrivateOneWent) {
  ReleaseManager manager;

  manager.run({"keys", "--private", manager.folder() + "/../new.key"});

  EXPECT_EQ(manager.err(),
            "The private key is in " + (manager.desk() / "new.key") + "; keep a copy offline.\n");
}

// A checkout has a folder of that name, a worktree beside it a file.
class KeysInACheckout : public testing::TestWithParam<const char*> {};

TEST_P(KeysInACheckout, AreRefusedUnlessToldOtherwise) {
  ReleaseManager manager;
  manager.desk().write(std::string("checkout/") + GetParam(), "");
  const std::string file = manager.desk() / "checkout/keys/new.key";
  std::filesystem::create_directories(manager.desk() / "checkout/keys");
  const std::string checkout = std::filesystem::canonical(manager.desk() / "checkout");

  EXPECT_EQ(manager.run({"keys", "--private", file}), 1);
  EXPECT_EQ(manager.err(), "karno-appcast: " + file + " would lie in the git checkout " + checkout +
                               "; choose another folder, or say --in-checkout\n");
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_EQ(manager.run({"keys", "--private", file, "--in-checkout"}), 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, KeysInACheckout, testing::Values(".git/HEAD", ".git"));

TEST(Keys, ALinkIntoACheckoutLeadsThereAsWell) {
  ReleaseManager manager;
  manager.desk().write("checkout/.git", "");
  std::filesystem::create_symlink(manager.desk() / "checkout", manager.desk() / "elsewhere");

  EXPECT_EQ(manager.run({"keys", "--private", manager.desk() / "elsewhere/new.key"}), 1);
  EXPECT_FALSE(std::filesystem::exists(manager.desk() / "checkout/new.key"));
}

TEST(Keys, ThePublicOneIsFoundAgainFromThePrivateOne) {
  ReleaseManager manager;
  const std::string file = manager.desk() / "new.key";
  manager.run({"keys", "--private", file});
  const std::string publicKey = manager.out();

  const int status = manager.run({"public-key", "--private", file});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(manager.out(), publicKey);
}

TEST(Keys, ThePublicOneOfTheStandardsFirstExample) {
  ReleaseManager manager;

  const int status = manager.run({"public-key", "--private=" + manager.keyFile()});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(manager.out(), "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=\n");
}

TEST(Keys, AreNeverOverwritten) {
  ReleaseManager manager;
  const std::string before = contentOf(manager.keyFile());

  const int status = manager.run({"keys", "--private", manager.keyFile()});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.out(), "");
  EXPECT_EQ(manager.err(), "karno-appcast: " + manager.keyFile() +
                               " is there already; a private key is never overwritten\n");
  EXPECT_EQ(contentOf(manager.keyFile()), before);
}

TEST(Keys, ALinkThatLeadsNowhereIsNotFollowed) {
  ReleaseManager manager;
  const std::string link = manager.desk() / "link";
  std::filesystem::create_symlink(manager.desk() / "elsewhere", link);

  const int status = manager.run({"keys", "--private", link});

  EXPECT_EQ(status, 1);
  EXPECT_FALSE(std::filesystem::exists(manager.desk() / "elsewhere"));
}

TEST(Keys, CannotBeMadeInAFolderThatIsNotThere) {
  ReleaseManager manager;
  const std::string file = manager.desk() / "nowhere/new.key";

  const int status = manager.run({"keys", "--private", file});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.err(), "karno-appcast: cannot make " + file + ": No such file or directory\n");
}

TEST(Keys, APrivateOneThatOthersMayReadIsRefused) {
  ReleaseManager manager;
  ::chmod(manager.keyFile().c_str(), 0640);

  const int status = manager.run({"public-key", "--private", manager.keyFile()});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.err(),
            "karno-appcast: " + manager.keyFile() + " can be read by others than its owner; chmod 600 it\n");
}

TEST(Keys, APrivateOneThatEverybodyMayReadIsRefused) {
  ReleaseManager manager;
  ::chmod(manager.keyFile().c_str(), 0604);

  const int status = manager.run({"public-key", "--private", manager.keyFile()});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.out(), "");
}

TEST(Keys, WhiteSpaceBehindAPrivateOneDoesNotMatter) {
  ReleaseManager manager;
  manager.run({"public-key", "--private", manager.keyFile()});
  const std::string publicKey = manager.out();
  const std::string file =
      manager.desk().write("typed.key", "nWGxne/9WmC6hEr0kuwsxERJxWl7MmkZcDusAxyuf2A= \t\r\n\n");
  ::chmod(file.c_str(), 0600);

  const int status = manager.run({"public-key", "--private", file});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(manager.out(), publicKey);
}

TEST(Keys, ThatCannotBeWrittenLeaveNoFileBehind) {
  ReleaseManager manager;
  const std::string file = manager.desk() / "new.key";
  ForkedProcess process([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing = {.rlim_cur = 0, .rlim_max = 0};
    ::setrlimit(RLIMIT_FSIZE, &nothing);
    return manager.run({"keys", "--private", file});
  });

  EXPECT_EQ(process.exitStatus(), 1);
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(Keys, AFileThatIsNoPrivateKeyIsRefused) {
  ReleaseManager manager;
  const std::string file = manager.desk().write("no.key", "hello\n");
  ::chmod(file.c_str(), 0600);

  const int status = manager.run({"public-key", "--private", file});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.err(),
            "karno-appcast: " + file + ": this is no private key: base64 of 32 bytes is wanted\n");
}

}  // namespace
}  // namespace karno::appcast::test
