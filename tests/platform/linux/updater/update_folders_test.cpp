#include "platform/linux/updater/update_folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>

#include "../../support/temporary_folder.h"
#include "platform/linux/files/folder_hold.h"

namespace karno::platform::updates {
namespace {

namespace fs = std::filesystem;

void makeOlder(const fs::path& folder, int hours) {
  const std::time_t then = std::time(nullptr) - hours * 3600;
  const timeval times[2] = {{then, 0}, {then, 0}};
  ASSERT_EQ(::utimes(folder.c_str(), times), 0);
}

TEST(UpdateFolders, ArePrivateAndBesideTheBundle) {
  const test::TemporaryFolder folder;
  SiblingFolders folders;

  const auto made = folders.makeFolderBeside(folder / "Karno.app");

  ASSERT_TRUE(made);
  EXPECT_EQ(fs::path(made.value()).parent_path(), fs::path(folder.path()));
  EXPECT_TRUE(fs::path(made.value()).filename().string().starts_with(".karno-update-"));
  EXPECT_EQ(fs::status(made.value()).permissions(), fs::perms::owner_all);
}

TEST(UpdateFolders, CannotBeMadeWhereThereIsNoFolder) {
  const test::TemporaryFolder folder;
  SiblingFolders folders;

  const auto made = folders.makeFolderBeside(folder / "missing/Karno.app");

  ASSERT_FALSE(made);
  EXPECT_EQ(made.error().code(), 4012);
}

TEST(UpdateFolders, LieWhereTwoFoldersCanBeExchanged) {
  const test::TemporaryFolder folder;
  fs::create_directory(folder / "Karno.app");

  EXPECT_EQ(SiblingFolders().refusalOfPlace(folder / "Karno.app"), std::nullopt);

  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(UpdateFolders, SayWhereTwoFoldersCannotBeExchanged) {
  const test::TemporaryFolder folder;
  fs::create_directory(folder / "Karno.app");
  const auto unknown = [](const std::string&, const std::string&) { return EINVAL; };

  const auto refusal = SiblingFolders(unknown).refusalOfPlace(folder / "Karno.app");

  ASSERT_TRUE(refusal);
  EXPECT_EQ(refusal->code(), 4005);
  EXPECT_EQ(refusal->localizedDescription(), "Updates cannot be installed in the folder “" + folder.path() +
                                                 "”: its disk cannot exchange two folders in one step.");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

// As nobody where the test runs as the super-user, who may write everywhere.
std::optional<Error> refusalToSomebodyElse(const std::string& bundle) {
  if (::geteuid() == 0 && ::seteuid(65534) != 0) return Error::posix(errno);
  auto refusal = SiblingFolders().refusalOfPlace(bundle);
  if (::getuid() == 0 && ::seteuid(0) != 0) std::abort();
  return refusal;
}

TEST(UpdateFolders, SayThatABundleCannotBeWrittenThoughTheFolderAroundItCan) {
  const test::TemporaryFolder folder;
  fs::create_directory(folder / "Karno.app");
  fs::permissions(folder / "Karno.app", fs::perms(0555));
  fs::permissions(folder.path(), fs::perms::all);

  const auto refusal = refusalToSomebodyElse(folder / "Karno.app");

  ASSERT_TRUE(refusal);
  EXPECT_EQ(refusal->code(), 4012);
  EXPECT_EQ(refusal->localizedDescription(),
            "The folder “" + (folder / "Karno.app") + "” cannot be written: Permission denied.");
}

TEST(UpdateFolders, SayWhereNothingCanBeWritten) {
  const test::TemporaryFolder folder;

  const auto refusal = SiblingFolders().refusalOfPlace(folder / "missing/Karno.app");

  ASSERT_TRUE(refusal);
  EXPECT_EQ(refusal->code(), 4012);
}

TEST(UpdateFolders, AreHeldUntilTheyAreRemoved) {
  const test::TemporaryFolder folder;
  SiblingFolders folders;

  const std::string made = folders.makeFolderBeside(folder / "Karno.app").value();
  EXPECT_EQ(isFolderHeld(made), true);
  folders.removeLeftoversBeside(folder / "Karno.app");
  EXPECT_TRUE(fs::exists(made));

  folders.remove(made);
  EXPECT_FALSE(fs::exists(made));
}

TEST(UpdateFolders, OfADownloadThatWasCutOffGoAtOnce) {
  const test::TemporaryFolder folder;
  folder.write(".karno-update-download/archive", "half");
  fs::create_directory(folder / ".karno-update-empty");
  fs::create_directories(folder / ".karno-update-unpacked/Karno.app");

  SiblingFolders().removeLeftoversBeside(folder / "Karno.app");

  EXPECT_FALSE(fs::exists(folder / ".karno-update-download"));
  EXPECT_FALSE(fs::exists(folder / ".karno-update-empty"));
  EXPECT_TRUE(fs::exists(folder / ".karno-update-unpacked/Karno.app"));
}

TEST(UpdateFoldersDeathTest, GoWithTheProcessUnlessTheyAreHandedOver) {
  const test::TemporaryFolder folder;
  const auto end = [&] {
    SiblingFolders folders;
    const std::string left = folders.makeFolderBeside(folder / "Karno.app").value();
    const std::string handed = folders.makeFolderBeside(folder / "Karno.app").value();
    fs::create_directory(fs::path(left) / "inside");
    fs::create_directory(fs::path(handed) / "Karno.app");
    folders.handOver(handed);
    std::exit(0);
  };

  EXPECT_EXIT(end(), ::testing::ExitedWithCode(0), "");

  const fs::directory_iterator remains(folder.path());
  ASSERT_NE(remains, fs::directory_iterator());
  EXPECT_TRUE(fs::exists(remains->path() / "Karno.app"));
  EXPECT_EQ(std::distance(remains, {}), 1);
}

TEST(UpdateFolders, OfMoreThanADayAgoAreClearedAwayAndNothingElse) {
  const test::TemporaryFolder folder;
  for (const char* name : {".karno-update-old", ".karno-update-young", "Karno.app", ".karno-other"})
    fs::create_directories(fs::path(folder / name) / "inside");
  fs::create_symlink(folder / "Karno.app", folder / ".karno-update-link");
  makeOlder(folder / ".karno-update-old", 25);
  makeOlder(folder / ".karno-update-young", 23);
  makeOlder(folder / ".karno-other", 25);
  makeOlder(folder / "Karno.app", 25);

  SiblingFolders().removeLeftoversBeside(folder / "Karno.app");

  EXPECT_FALSE(fs::exists(folder / ".karno-update-old"));
  EXPECT_TRUE(fs::exists(folder / ".karno-update-young/inside"));
  EXPECT_TRUE(fs::exists(folder / ".karno-other/inside"));
  EXPECT_TRUE(fs::exists(folder / "Karno.app/inside"));
  EXPECT_TRUE(fs::is_symlink(folder / ".karno-update-link"));
}

}  // namespace
}  // namespace karno::platform::updates
