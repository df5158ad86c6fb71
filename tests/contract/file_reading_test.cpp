#include "platform/file_reading.h"

#include <cerrno>

#include "world.h"

namespace karno::test {
namespace {

using platform::Error;
using platform::ReadableFile;

class FileReadingContract : public Contract {
 protected:
  std::unique_ptr<ReadableFile> opened(const std::string& name) {
    return std::move(reading_.open(here_ / name).value());
  }
  void append(const std::string& line) { services_.files.openForAppending(here_ / "log")->writeLine(line); }

  platform::FileReading& reading_ = services_.fileReading;
};

TEST_P(FileReadingContract, ReadsAPieceFromAnywhere) {
  here_.write("log", "0123456789");
  here_.link("link", "log");

  const auto file = opened("link");

  EXPECT_EQ(file->sizeInBytes(), 10U);
  EXPECT_EQ(file->read(0, 4).value(), "0123");
  EXPECT_EQ(file->read(7, 100).value(), "789");
  EXPECT_EQ(file->read(10, 100).value(), "");
  EXPECT_EQ(file->read(1000, 100).value(), "");
  EXPECT_EQ(file->read(5, 0).value(), "");
}

TEST_P(FileReadingContract, SeesWhatIsAppendedAndThatTheFileIsEmptied) {
  here_.write("log", "one\n");
  const auto file = opened("log");

  append("two");
  const std::string appended = file->read(4, 100).value();
  services_.files.createFile(here_ / "log");

  EXPECT_EQ(appended, "two\n");
  EXPECT_EQ(file->sizeInBytes(), 0U);
  EXPECT_EQ(file->read(0, 100).value(), "");
}

TEST_P(FileReadingContract, StaysWithTheFileThatIsRenamedOrRemoved) {
  here_.write("log", "first\n");
  const auto first = opened("log");

  services_.files.move(here_ / "log", here_ / "old");
  append("second");
  const auto second = opened("log");
  const auto renamed = opened("old");
  services_.files.remove(here_ / "old");

  EXPECT_EQ(first->read(0, 100).value(), "first\n");
  EXPECT_EQ(first->identity(), renamed->identity());
  EXPECT_NE(first->identity(), second->identity());
  EXPECT_EQ(second->identity(), opened("log")->identity());
}

TEST_P(FileReadingContract, OpensRegularFilesOnly) {
  here_.write("file", "");
  here_.pipe("pipe");
  here_.link("broken", "nowhere");

  EXPECT_EQ(reading_.open(here_ / "none").error(), Error::posix(ENOENT));
  EXPECT_EQ(reading_.open(here_ / "broken").error(), Error::posix(ENOENT));
  EXPECT_EQ(reading_.open(here_ / "file/inner").error(), Error::posix(ENOTDIR));
  EXPECT_EQ(reading_.open(here_.folder()).error(), Error::posix(EISDIR));
  EXPECT_EQ(reading_.open(here_ / "pipe").error(), Error::posix(EINVAL));
}

INSTANTIATE_TEST_SUITE_P(Fake, FileReadingContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, FileReadingContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
