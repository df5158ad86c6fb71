#include "karnoctl/log/line_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "fake_platform.h"
#include "karnoctl/log/log_tail.h"

namespace karno::karnoctl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kLog = "/Users/tester/log";

// A file of a disk that cannot be read beyond the first piece.
class DamagedReading final : public platform::FileReading {
 public:
  explicit DamagedReading(const platform::FileReading& reading) : reading_(reading) {}

  platform::Result<std::unique_ptr<platform::ReadableFile>> open(const std::string& path) const override {
    auto file = reading_.open(path);
    if (!file) return file.error();
    return std::unique_ptr<platform::ReadableFile>(std::make_unique<File>(std::move(file.value())));
  }

 private:
  class File final : public platform::ReadableFile {
   public:
    explicit File(std::unique_ptr<platform::ReadableFile> file) : file_(std::move(file)) {}

    platform::FileIdentity identity() const override { return file_->identity(); }
    std::uint64_t sizeInBytes() const override { return file_->sizeInBytes(); }
    platform::Result<std::string> read(std::uint64_t offset, std::size_t bytesMax) const override {
      if (offset > 0) return platform::Error::posix(EIO);
      return file_->read(offset, bytesMax);
    }

   private:
    std::unique_ptr<platform::ReadableFile> file_;
  };

  const platform::FileReading& reading_;
};

class LinesOfALog : public testing::Test {
 protected:
  ReadingOfLines read(const std::string& text) {
    machine_.files.addFile(kLog, text);
    return read(machine_.fileReading);
  }

  ReadingOfLines read(const platform::FileReading& reading) {
    return readLogLines(reading, kLog, [this](std::string_view line) { lines_.emplace_back(line); });
  }

  test::FakePlatform machine_;
  std::vector<std::string> lines_;
};

TEST_F(LinesOfALog, AreGivenWithoutTheirNewlines) {
  const ReadingOfLines found = read("one\n\ntwo\r\n");

  EXPECT_THAT(lines_, ElementsAre("one", "", "two"));
  EXPECT_FALSE(found.error);
  EXPECT_FALSE(found.isOfEndOnly);
  EXPECT_FALSE(found.endsWithinLine);
}

TEST_F(LinesOfALog, DoNotIncludeOneThatIsNotWhole) {
  const ReadingOfLines found = read("one\ntw");

  EXPECT_THAT(lines_, ElementsAre("one"));
  EXPECT_TRUE(found.endsWithinLine);
}

TEST_F(LinesOfALog, AreWholeWhereTheyLieInTwoPieces) {
  const std::string longLine(kPieceBytes - 2, 'x');

  read(longLine + "\nabc\n");

  EXPECT_THAT(lines_, ElementsAre(longLine, "abc"));
}

TEST_F(LinesOfALog, AreNoneOfAFileThatIsNotThere) {
  EXPECT_TRUE(read(machine_.fileReading).error);
  EXPECT_THAT(lines_, IsEmpty());
}

TEST_F(LinesOfALog, AreThoseInFrontOfADamage) {
  machine_.files.addFile(kLog, "one\n" + std::string(2 * kPieceBytes, 'x') + "\ntwo\n");

  const ReadingOfLines found = read(DamagedReading(machine_.fileReading));

  EXPECT_EQ(found.error, platform::Error::posix(EIO));
  EXPECT_THAT(lines_, ElementsAre("one"));
}

TEST_F(LinesOfALog, AreThoseAtTheEndOfAFileBeyondAllMeasure) {
  machine_.files.addFile(kLog, "\none\n");
  machine_.files.setSize(kLog, kLogBytesMax + 1);

  const ReadingOfLines found = read(machine_.fileReading);

  EXPECT_TRUE(found.isOfEndOnly);
  ASSERT_THAT(lines_, SizeIs(2));
  EXPECT_EQ(lines_.back(), "one");
}

}  // namespace
}  // namespace karno::karnoctl
