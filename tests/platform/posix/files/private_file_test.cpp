#include "platform/private_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "../../support/temporary_folder.h"

namespace karno::platform {
namespace {

using test::TemporaryFolder;

std::ptrdiff_t filesIn(const TemporaryFolder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.path()), {});
}

TEST(PrivateFile, IsForItsUserAlone) {
  const TemporaryFolder here;

  const auto error = writePrivateFile(here / "file", std::string("a\0b", 3));

  struct stat status = {};
  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(::stat((here / "file").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
  EXPECT_EQ(status.st_size, 3);
  EXPECT_EQ(filesIn(here), 1);
}

TEST(PrivateFile, TakesThePlaceOfOneThatOthersMayRead) {
  const TemporaryFolder here;
  const std::string path = here.write("file", "before");
  std::filesystem::permissions(path, std::filesystem::perms(0644));

  EXPECT_EQ(writePrivateFile(path, "after"), std::nullopt);

  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
  EXPECT_EQ(filesIn(here), 1);
}

TEST(PrivateFile, LeavesNothingWhereItCannotLie) {
  const TemporaryFolder here;
  std::filesystem::create_directory(here / "folder");

  EXPECT_EQ(writePrivateFile(here / "folder", "x"), Error::posix(EISDIR));
  EXPECT_EQ(writePrivateFile(here / "missing/file", "x"), Error::posix(ENOENT));

  EXPECT_EQ(filesIn(here), 1);
}

}  // namespace
}  // namespace karno::platform
