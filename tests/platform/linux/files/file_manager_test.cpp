#include "platform/linux/files/file_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"
#include "../../support/told_notices.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

using test::contentOf;
using test::ScopedEnvironment;
using test::TemporaryFolder;
using ::testing::ElementsAre;

class LinuxFileManagerTest : public testing::Test {
 protected:
  fs::perms permissionsOf(const std::string& name) const {
    return fs::symlink_status(folder_ / name).permissions();
  }

  const TemporaryFolder folder_;
  const ScopedEnvironment home_{"HOME", folder_ / "home"};
  test::ToldNotices told_;
  LinuxFileManager manager_{told_.notices()};
};

TEST_F(LinuxFileManagerTest, CopiesABundleWithItsLinksAndPermissions) {
  folder_.write("A.app/Contents/MacOS/A", "program");
  fs::permissions(folder_ / "A.app/Contents/MacOS/A", fs::perms(0751));
  fs::create_symlink("MacOS/A", folder_ / "A.app/Contents/Current");
  fs::create_symlink("/nowhere", folder_ / "A.app/Contents/Broken");
  fs::create_directory(folder_ / "A.app/Contents/Empty");
  fs::permissions(folder_ / "A.app/Contents/Empty", fs::perms(0700));

  const auto error = manager_.copyItem(folder_ / "A.app", folder_ / "B.app");

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(contentOf(folder_ / "B.app/Contents/MacOS/A"), "program");
  EXPECT_EQ(permissionsOf("B.app/Contents/MacOS/A"), fs::perms(0751));
  EXPECT_EQ(fs::read_symlink(folder_ / "B.app/Contents/Current"), "MacOS/A");
  EXPECT_EQ(fs::read_symlink(folder_ / "B.app/Contents/Broken"), "/nowhere");
  EXPECT_EQ(permissionsOf("B.app/Contents/Empty"), fs::perms(0700));
  EXPECT_EQ(contentOf(folder_ / "A.app/Contents/MacOS/A"), "program");
}

TEST_F(LinuxFileManagerTest, KeepsTimesAndAttributes) {
  folder_.write("A.app/Contents/file", "text");
  const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(24 * 365);
  const fs::path file = folder_ / "A.app/Contents/file";
  const bool hasAttributes = ::setxattr(file.c_str(), "user.karno", "value", 5, 0) == 0;
  fs::last_write_time(file, longAgo);
  fs::last_write_time(folder_ / "A.app/Contents", longAgo);

  ASSERT_EQ(manager_.copyItem(folder_ / "A.app", folder_ / "B.app"), std::nullopt);

  EXPECT_EQ(fs::last_write_time(folder_ / "B.app/Contents/file"), longAgo);
  EXPECT_EQ(fs::last_write_time(folder_ / "B.app/Contents"), longAgo);
  std::array<char, 8> value = {};
  const ssize_t count =
      ::getxattr((folder_ / "B.app/Contents/file").c_str(), "user.karno", value.data(), value.size());
  EXPECT_EQ(count, hasAttributes ? 5 : -1);
}

TEST_F(LinuxFileManagerTest, TakesAwayWhatAnEarlierCopyLeftBehind) {
  folder_.write("A.app/file", "new");
  folder_.write(".B.app.copying/half", "old");

  EXPECT_EQ(manager_.copyItem(folder_ / "A.app", folder_ / "B.app"), std::nullopt);

  EXPECT_FALSE(fs::exists(folder_ / ".B.app.copying"));
  EXPECT_FALSE(fs::exists(folder_ / "B.app/half"));
  EXPECT_EQ(contentOf(folder_ / "B.app/file"), "new");
}

TEST_F(LinuxFileManagerTest, DoesNotCopyWithoutEnd) {
  fs::path deep = folder_ / "A.app";
  for (int i = 0; i < 140; ++i) deep /= "d";
  fs::create_directories(deep);

  EXPECT_EQ(manager_.copyItem(folder_ / "A.app", folder_ / "B.app"), Error::posix(ELOOP));
}

// An item on another file system than the Trash, which it can only be copied to.
class LinuxFileManagerAcrossDisks : public LinuxFileManagerTest {
 protected:
  const fs::path other_ = fs::path("/dev/shm") / fs::path(folder_.path()).filename();
  const fs::path item_ = other_ / "A.app";

  LinuxFileManagerAcrossDisks() { fs::create_directories(item_ / "Contents"); }
  ~LinuxFileManagerAcrossDisks() override { fs::remove_all(other_); }

  void write(const fs::path& path, const std::string& text) const { std::ofstream(path) << text; }
};

TEST_F(LinuxFileManagerAcrossDisks, MovesToTheTrash) {
  write(item_ / "Contents/file", "text");
  fs::create_symlink("file", item_ / "Contents/link");

  const auto error = manager_.trashItem(item_);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_FALSE(fs::exists(item_));
  EXPECT_EQ(contentOf(folder_ / "home/.Trash/A.app/Contents/file"), "text");
  EXPECT_EQ(fs::read_symlink(folder_ / "home/.Trash/A.app/Contents/link"), "file");
}

TEST_F(LinuxFileManagerAcrossDisks, LeavesWhatItCannotCopyWhereItIs) {
  write(item_ / "Contents/file", "text");
  ASSERT_EQ(::mkfifo((item_ / "Contents/pipe").c_str(), 0600), 0);

  const auto error = manager_.trashItem(item_);

  EXPECT_EQ(error, Error::posix(ENOTSUP));
  EXPECT_THAT(told_.lines(), ElementsAre("WARN “" + item_.string() +
                                         "” could not be put into the Trash: Operation not supported"));
  EXPECT_EQ(contentOf(item_ / "Contents/file"), "text");
  EXPECT_TRUE(fs::exists(item_ / "Contents/pipe"));
  EXPECT_TRUE(fs::is_empty(folder_ / "home/.Trash"));
}

}  // namespace
}  // namespace karno::platform
