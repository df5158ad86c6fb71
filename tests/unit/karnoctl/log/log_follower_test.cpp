#include "karnoctl/log/log_follower.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

#include "fake_platform.h"

namespace karno::karnoctl {
namespace {

using test::FakePlatform;

constexpr const char* kFollowedLog = "/Users/tester/Library/log";
constexpr const char* kOld = "/Users/tester/Library/old";

class LogFollowerTest : public testing::Test {
 protected:
  LogFollower followFromTheEndOf(const std::string& text) {
    machine.files.addFile(kFollowedLog, text);
    return {machine.fileReading, kFollowedLog, std::move(machine.fileReading.open(kFollowedLog).value()),
            text.size()};
  }

  void append(const std::string& line) {
    const auto stream = machine.files.openForAppending(kFollowedLog);
    stream->writeLine(line);
    stream->flush();
  }

  FakePlatform machine;
};

TEST_F(LogFollowerTest, ReadsWhatIsAdded) {
  LogFollower follower = followFromTheEndOf("one\n");
  EXPECT_EQ(follower.newText(), "");

  append("two");
  append("three");

  EXPECT_EQ(follower.newText(), "two\nthree\n");
  EXPECT_EQ(follower.newText(), "");
  EXPECT_FALSE(follower.startedAnew());
}

TEST_F(LogFollowerTest, ReadsTheLastLinesOfARotatedFileAndThenTheNewOne) {
  LogFollower follower = followFromTheEndOf("one\n");
  append("two");
  machine.files.move(kFollowedLog, kOld);
  append("three");

  EXPECT_EQ(follower.newText(), "two\n");
  EXPECT_FALSE(follower.startedAnew());
  EXPECT_EQ(follower.newText(), "three\n");
  EXPECT_TRUE(follower.startedAnew());
  EXPECT_EQ(follower.newText(), "");
}

// Whoever logs may do so, and rotate, between any two looks.
class InterruptedReading final : public platform::FileReading {
 public:
  explicit InterruptedReading(const platform::FileReading& reading) : reading_(reading) {}

  platform::Result<std::unique_ptr<platform::ReadableFile>> open(const std::string& path) const override {
    if (beforeOpening) std::exchange(beforeOpening, nullptr)();
    return reading_.open(path);
  }

  mutable std::function<void()> beforeOpening;

 private:
  const platform::FileReading& reading_;
};

TEST_F(LogFollowerTest, LosesNoLineThatComesJustBeforeARotation) {
  machine.files.addFile(kFollowedLog, "one\n");
  const InterruptedReading reading(machine.fileReading);
  LogFollower follower(reading, kFollowedLog, std::move(reading.open(kFollowedLog).value()), 4);
  reading.beforeOpening = [this] {
    append("two");
    machine.files.move(kFollowedLog, kOld);
    append("three");
  };

  EXPECT_EQ(follower.newText(), "two\n");
  EXPECT_EQ(follower.newText(), "three\n");
}

TEST_F(LogFollowerTest, WaitsWhileARotatedFileIsNotMadeAnew) {
  LogFollower follower = followFromTheEndOf("one\n");
  machine.files.move(kFollowedLog, kOld);
  EXPECT_EQ(follower.newText(), "");

  append("two");

  EXPECT_EQ(follower.newText(), "two\n");
}

TEST_F(LogFollowerTest, StartsOverWhenTheFileIsCutShort) {
  LogFollower follower = followFromTheEndOf("one\ntwo\n");

  machine.files.overwrite(kFollowedLog, "new\n");

  EXPECT_EQ(follower.newText(), "new\n");
  EXPECT_TRUE(follower.startedAnew());
}

TEST_F(LogFollowerTest, WaitsForAFileThatIsNotThereYet) {
  LogFollower follower(machine.fileReading, kFollowedLog, nullptr, 0);
  EXPECT_EQ(follower.newText(), "");

  append("one");

  EXPECT_EQ(follower.newText(), "one\n");
  EXPECT_FALSE(follower.startedAnew());
}

TEST_F(LogFollowerTest, TakesALotInPieces) {
  LogFollower follower = followFromTheEndOf("");
  append(std::string(100'000, 'x'));

  EXPECT_EQ(follower.newText(), std::string(65'536, 'x'));
  EXPECT_EQ(follower.newText(), std::string(34'464, 'x') + "\n");
  EXPECT_EQ(follower.newText(), "");
}

}  // namespace
}  // namespace karno::karnoctl
