#include "platform/posix/file_reading.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "../support/temporary_folder.h"

namespace karno::platform {
namespace {

using test::TemporaryFolder;

TEST(PosixFileReading, ReadsAPieceFromAnywhere) {
  const TemporaryFolder folder;
  const auto file = PosixFileReading().open(folder.write("log", "0123456789"));
  ASSERT_TRUE(file);

  EXPECT_EQ(file.value()->sizeInBytes(), 10U);
  EXPECT_EQ(file.value()->read(0, 4).value(), "0123");
  EXPECT_EQ(file.value()->read(7, 100).value(), "789");
  EXPECT_EQ(file.value()->read(10, 100).value(), "");
  EXPECT_EQ(file.value()->read(1000, 100).value(), "");
}

TEST(PosixFileReading, SeesWhatIsAddedLater) {
  const TemporaryFolder folder;
  const auto file = PosixFileReading().open(folder.write("log", "one"));
  ASSERT_TRUE(file);

  std::ofstream(folder / "log", std::ios::app) << "two";

  EXPECT_EQ(file.value()->sizeInBytes(), 6U);
  EXPECT_EQ(file.value()->read(3, 100).value(), "two");
}

TEST(PosixFileReading, StaysWithTheFileThatWasRenamed) {
  const TemporaryFolder folder;
  const PosixFileReading reading;
  const auto first = reading.open(folder.write("log", "first"));
  ASSERT_TRUE(first);

  std::filesystem::rename(folder / "log", folder / "old");
  const auto second = reading.open(folder.write("log", "second"));
  const auto renamed = reading.open(folder / "old");

  ASSERT_TRUE(second && renamed);
  EXPECT_EQ(first.value()->read(0, 100).value(), "first");
  EXPECT_NE(first.value()->identity(), second.value()->identity());
  EXPECT_EQ(first.value()->identity(), renamed.value()->identity());
}

TEST(PosixFileReading, OpensRegularFilesOnly) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  const PosixFileReading reading;

  EXPECT_EQ(reading.open(folder / "missing").error(), Error::posix(ENOENT));
  EXPECT_EQ(reading.open(folder.path()).error(), Error::posix(EISDIR));
  EXPECT_EQ(reading.open(folder / "pipe").error(), Error::posix(EINVAL));
}

}  // namespace
}  // namespace karno::platform
