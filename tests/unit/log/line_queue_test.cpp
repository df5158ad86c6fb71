#include "log/line_queue.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <vector>

namespace karno {
namespace {

using namespace std::string_literals;

std::vector<std::string> all(LineQueue& queue) {
  std::vector<std::string> lines;
  for (std::string line; queue.pop(line);) lines.push_back(line);
  return lines;
}

TEST(LineQueue, GivesLinesInTheOrderInWhichTheyCame) {
  LineQueue queue;

  queue.push("one");
  queue.push("");
  queue.push("three\0with a zero byte"s);

  EXPECT_EQ(queue.size(), 3U);
  EXPECT_EQ(all(queue), (std::vector{"one"s, ""s, "three\0with a zero byte"s}));
  EXPECT_EQ(queue.size(), 0U);
}

TEST(LineQueue, LeavesTheTextAloneWhenThereIsNone) {
  LineQueue queue;
  std::string line = "before";

  EXPECT_FALSE(queue.pop(line));
  EXPECT_EQ(line, "before");
}

TEST(LineQueue, KeepsManyLinesOfManyLengthsApart) {
  LineQueue queue;
  std::vector<std::string> lines;
  for (std::size_t number = 0; number < 5'000; ++number) {
    lines.emplace_back(number * 37 % 301, static_cast<char>('a' + number % 26));
  }

  for (const std::string& line : lines) queue.push(line);

  EXPECT_EQ(all(queue), lines);
}

TEST(LineQueue, KeepsNoBlockWhenItIsEmpty) {
  LineQueue queue;
  const std::size_t before = ::mallinfo2().uordblks;
  for (int count = 0; count < 10'000; ++count) queue.push("a line of a burst");
  for (std::string line; queue.pop(line);) {
  }

  EXPECT_LT(::mallinfo2().uordblks, before + 10'000);
}

TEST(LineQueue, TakesALineThatIsLongerThanABlock) {
  LineQueue queue;
  const std::string line(1'000'000, 'x');

  queue.push("before");
  queue.push(line);
  queue.push("after");

  EXPECT_EQ(all(queue), (std::vector{"before"s, line, "after"s}));
}

TEST(LineQueue, TakesALongLineFirst) {
  LineQueue queue;
  const std::string line(1'000'000, 'x');

  queue.push(line);

  EXPECT_EQ(all(queue), std::vector{line});
  queue.push("after");
  EXPECT_EQ(all(queue), std::vector{"after"s});
}

TEST(LineQueue, GoesOnAfterItWasEmptyAndWhileItIsRead) {
  LineQueue queue;
  std::string line;
  std::size_t wrong = 0;

  for (int number = 0; number < 20'000; ++number) {
    queue.push(std::to_string(number));
    if (number % 3 == 0) queue.push("more");
    wrong += queue.pop(line) ? 0 : 1;
  }

  EXPECT_EQ(wrong, 0U);
  EXPECT_EQ(queue.size(), 6'667U);
  EXPECT_EQ(all(queue).back(), "19999");
}

}  // namespace
}  // namespace karno
