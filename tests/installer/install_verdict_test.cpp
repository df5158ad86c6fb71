#include "platform/linux/files/install_verdict.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "temporary_folder.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* kName = ".karno-update-verdict-Karno.app";

TEST(InstallVerdict, IsTakenOnceAndIsGoneThen) {
  const test::TemporaryFolder folder;
  InstallVerdictFile(folder / "Karno.app", "1.1").write("The process 12 did not end.");

  const auto first = takeInstallVerdict(folder / "Karno.app");
  const auto second = takeInstallVerdict(folder / "Karno.app");

  ASSERT_TRUE(first && *first);
  EXPECT_EQ(first->value(), (InstallVerdict{.version = "1.1", .reason = "The process 12 did not end."}));
  EXPECT_FALSE(second);
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(InstallVerdict, SaysWhatWasWrittenLast) {
  const test::TemporaryFolder folder;
  {
    InstallVerdictFile file(folder / "Karno.app", "1.1");
    file.write("The installation was cut off, and that is a long sentence.");
    file.write("No.");
  }

  const auto verdict = takeInstallVerdict(folder / "Karno.app");

  ASSERT_TRUE(verdict && *verdict);
  EXPECT_EQ(verdict->value().reason, "No.");
}

TEST(InstallVerdict, IsNotTakenFromAnInstallerAtWork) {
  const test::TemporaryFolder folder;
  InstallVerdictFile file(folder / "Karno.app", "1.1");
  file.write("The installation was cut off.");

  const auto verdict = takeInstallVerdict(folder / "Karno.app");

  EXPECT_FALSE(verdict);
  EXPECT_TRUE(fs::exists(folder / kName));
}

TEST(InstallVerdict, OfAnInstallationThatSucceededIsNone) {
  const test::TemporaryFolder folder;
  InstallVerdictFile file(folder / "Karno.app", "1.1");
  file.write("The installation was cut off.");

  file.remove();

  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(InstallVerdict, IsOfOneBundle) {
  const test::TemporaryFolder folder;
  InstallVerdictFile(folder / "Karno.app", "1.1").write("No.");

  EXPECT_FALSE(takeInstallVerdict(folder / "Other.app"));
  EXPECT_TRUE(takeInstallVerdict(folder / "Karno.app"));
}

TEST(InstallVerdict, ThatCannotBeWrittenSaysWhy) {
  InstallVerdictFile file("/nowhere at all/Karno.app", "1.1");

  EXPECT_EQ(file.write("No."), ENOENT);
}

TEST(InstallVerdict, StandsInOneLineWhateverItHolds) {
  const auto verdict = parseInstallVerdict("version 1\x1B[31m\nfailed a\tb\xE2\x80\xAE c\n");

  ASSERT_TRUE(verdict);
  EXPECT_EQ(verdict->version, "1\\u001b[31m");
  EXPECT_EQ(verdict->reason, "a\\tb\\u202e c");
}

struct Damage {
  std::string bytes;
  int error;
};

class DamagedVerdict : public ::testing::TestWithParam<Damage> {};

TEST_P(DamagedVerdict, IsAnErrorAndGone) {
  const test::TemporaryFolder folder;
  folder.write(kName, GetParam().bytes);

  const auto verdict = takeInstallVerdict(folder / "Karno.app");

  ASSERT_TRUE(verdict);
  ASSERT_FALSE(*verdict);
  EXPECT_EQ(verdict->error(), Error::posix(GetParam().error));
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, DamagedVerdict,
    ::testing::Values(Damage{"", EBADMSG}, Damage{"version 1\n", EBADMSG},
                      Damage{"version 1\nfailed cut", EBADMSG}, Damage{"version 1\nfailed \n", EBADMSG},
                      Damage{"version 1\nfailed a\nfailed b\n", EBADMSG},
                      Damage{"failed a\nversion 1\n", EBADMSG}, Damage{"version 1\nfailed \xFF\n", EBADMSG},
                      Damage{"version 1\nfailed " + std::string(kInstallVerdictBytesMax, 'x') + "\n", EFBIG},
                      Damage{std::string(1U << 20U, '\n'), EFBIG}));

// A link could lead the reader anywhere, and a pipe would hold it up.
TEST(InstallVerdict, IsAFileAndNothingElse) {
  const test::TemporaryFolder folder;
  const std::string elsewhere = folder.write("elsewhere", "version 1\nfailed No.\n");
  fs::create_symlink(elsewhere, folder / kName);
  ASSERT_EQ(::mkfifo((folder / ".karno-update-verdict-Pipe.app").c_str(), 0600), 0);
  fs::create_directory(folder / ".karno-update-verdict-Folder.app");

  EXPECT_FALSE(takeInstallVerdict(folder / "Karno.app"));
  EXPECT_FALSE(takeInstallVerdict(folder / "Pipe.app"));
  EXPECT_FALSE(takeInstallVerdict(folder / "Folder.app"));
}

TEST(InstallVerdict, TakesThePlaceOfALinkInsteadOfWritingThroughIt) {
  const test::TemporaryFolder folder;
  const std::string elsewhere = folder.write("elsewhere", "precious");
  fs::create_symlink(elsewhere, folder / kName);

  InstallVerdictFile(folder / "Karno.app", "1").write("No.");

  EXPECT_EQ(test::contentOf(elsewhere), "precious");
  EXPECT_TRUE(takeInstallVerdict(folder / "Karno.app"));
}

}  // namespace
}  // namespace karno::platform
