#include "karnoctl/log/log_tail.h"

#include <gtest/gtest.h>

#include <ostream>

#include "fake_platform.h"

namespace karno::karnoctl {

void PrintTo(const Tail& tail, std::ostream* out) {
  *out << tail.lines << " lines from " << tail.offset << " to " << tail.end;
}

namespace {

using test::FakePlatform;

Tail tailOf(const std::string& text, std::uint64_t linesMax) {
  FakePlatform machine;
  machine.files.addFile("/log", text);
  return findTail(*machine.fileReading.open("/log").value(), linesMax).value();
}

TEST(LogTail, BeginsWithTheFirstOfTheLastLines) {
  EXPECT_EQ(tailOf("one\ntwo\nthree\n", 2), (Tail{.offset = 4, .lines = 2, .end = 14}));
  EXPECT_EQ(tailOf("one\ntwo\nthree\n", 1), (Tail{.offset = 8, .lines = 1, .end = 14}));
}

TEST(LogTail, IsTheWholeFileWhenItHasFewerLines) {
  EXPECT_EQ(tailOf("one\ntwo\nthree\n", 3), (Tail{.offset = 0, .lines = 3, .end = 14}));
  EXPECT_EQ(tailOf("one\ntwo\nthree\n", 100), (Tail{.offset = 0, .lines = 3, .end = 14}));
}

TEST(LogTail, CountsTheLineThatIsNotFinished) {
  EXPECT_EQ(tailOf("one\ntwo\nthr", 2), (Tail{.offset = 4, .lines = 2, .end = 11}));
}

TEST(LogTail, CountsEmptyLines) {
  EXPECT_EQ(tailOf("one\n\n\n", 2), (Tail{.offset = 4, .lines = 2, .end = 6}));
  EXPECT_EQ(tailOf("\n", 5), (Tail{.offset = 0, .lines = 1, .end = 1}));
}

TEST(LogTail, OfNothingIsNothing) {
  EXPECT_EQ(tailOf("", 5), (Tail{.offset = 0, .lines = 0, .end = 0}));
  EXPECT_EQ(tailOf("one\n", 0), (Tail{.offset = 4, .lines = 0, .end = 4}));
}

TEST(LogTail, ReadsOnlyTheEndOfAHugeFile) {
  FakePlatform machine;
  machine.files.addFile("/log", "\none\ntwo\n");
  machine.files.setSize("/log", 9'000'000);
  const auto file = machine.fileReading.open("/log");

  const Tail tail = findTail(*file.value(), 2).value();

  EXPECT_EQ(tail, (Tail{.offset = 8'999'992, .lines = 2, .end = 9'000'000}));
  EXPECT_EQ(machine.fileReading.bytesRead(), 65'536U);
}

TEST(LogTail, IsFoundAcrossThePiecesItIsReadIn) {
  const std::string line = std::string(99'999, 'x') + "\n";

  EXPECT_EQ(tailOf(line + line + line, 2), (Tail{.offset = 100'000, .lines = 2, .end = 300'000}));
}

}  // namespace
}  // namespace karno::karnoctl
