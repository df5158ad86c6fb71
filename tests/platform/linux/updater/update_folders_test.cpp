#include "platform/linux/updater/update_folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>

#include "../../support/temporary_folder.h"

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
