#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "../support/scoped_environment.h"
#include "../support/temporary_folder.h"
#include "platform/posix/files.h"
#include "platform/posix/whole_file.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

using test::contentOf;
using test::ScopedEnvironment;
using test::TemporaryFolder;

class PosixFilesInAFolder : public testing::Test {
 protected:
  const TemporaryFolder folder_;
  PosixFiles files_;
};

TEST_F(PosixFilesInAFolder, HaveTheirPlaceBelowTheRootWhereThatIsTheHomeFolder) {
  const ScopedEnvironment home("HOME", "/");

  EXPECT_EQ(files_.searchPath(UserFolder::Library), std::vector<std::string>{"/Library"});
}

TEST_F(PosixFilesInAFolder, AreNotThereWhereALinkLeadsNowhere) {
  fs::create_symlink("nowhere", folder_ / "link");

  EXPECT_FALSE(files_.fileExists(folder_ / "link"));
}

TEST_F(PosixFilesInAFolder, GoThoughTheyAreLinksThatLeadNowhere) {
  fs::create_symlink("nowhere", folder_ / "link");

  EXPECT_EQ(files_.remove(folder_ / "link"), std::nullopt);
  EXPECT_FALSE(fs::is_symlink(folder_ / "link"));
}

TEST_F(PosixFilesInAFolder, AreMadeEmptyInPlaceOfThoseThatAreThere) {
  const std::string path = folder_.write("file", "old");

  EXPECT_EQ(files_.createFile(path), std::nullopt);
  EXPECT_EQ(contentOf(path), "");
}

TEST_F(PosixFilesInAFolder, AreMadeAsReadableAsOtherPrograms) {
  const std::string ofOthers = folder_.write("other", "");

  EXPECT_EQ(files_.createFile(folder_ / "file"), std::nullopt);
  EXPECT_EQ(fs::status(folder_ / "file").permissions(), fs::status(ofOthers).permissions());
}

TEST_F(PosixFilesInAFolder, AreNotWaitedForWhereAPipeHasNoReader) {
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);

  EXPECT_EQ(files_.createFile(folder_ / "pipe"), Error::posix(ENXIO));
}

TEST(ReplaceFile, LeavesNothingBehindWhenItFails) {
  const TemporaryFolder folder;
  fs::create_directories(folder / "taken/inner");

  EXPECT_NE(replaceFile(folder / "taken", "new"), 0);

  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace karno::platform
