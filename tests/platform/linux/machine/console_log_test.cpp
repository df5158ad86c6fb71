#include "platform/linux/machine/console_log.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "../../support/forked_process.h"
#include "../../support/standard_error_capture.h"
#include "platform/posix/processes/process_setup.h"

namespace karno::platform {
namespace {

using test::ForkedProcess;
using test::StandardErrorCapture;

TEST(StandardErrorLog, WritesOneLine) {
  const StandardErrorCapture console;
  StandardErrorLog log;

  log.log("Grüße");
  log.log("");

  EXPECT_EQ(console.text(), "Grüße\n\n");
}

TEST(StandardErrorLog, WritesLongLinesWhole) {
  const StandardErrorCapture console;
  StandardErrorLog log;
  std::string expected;

  for (const std::size_t length : {1022U, 1023U, 1024U, 1025U, 20'000U}) {
    log.log(std::string(length, 'x'));
    expected += std::string(length, 'x') + "\n";
  }

  EXPECT_EQ(console.text(), expected);
}

TEST(StandardErrorLog, DoesNotMixTheLinesOfSeveralThreads) {
  const StandardErrorCapture console;
  StandardErrorLog log;
  {
    std::vector<std::jthread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
      threads.emplace_back([&log, letter] {
        for (int count = 0; count < 500; ++count) log.log(std::string(200, letter));
      });
    }
  }

  std::multiset<std::string> lines;
  std::istringstream text(console.text());
  for (std::string line; std::getline(text, line);) lines.insert(line);

  EXPECT_EQ(lines.size(), 2000U);
  EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()),
            (std::set<std::string>{std::string(200, 'a'), std::string(200, 'b'), std::string(200, 'c'),
                                   std::string(200, 'd')}));
}

TEST(StandardErrorLog, OutlivesTheReaderOfItsPipe) {
  ForkedProcess process([] {
    setUpProcess();
    std::array<int, 2> ends = {};
    if (::pipe(ends.data()) != 0) return 1;
    ::dup2(ends[1], STDERR_FILENO);
    ::close(ends[1]);
    ::close(ends[0]);
    StandardErrorLog().log("nobody reads this");
    return 42;
  });

  EXPECT_EQ(process.exitStatus(), 42);
}

TEST(StandardErrorLog, OutlivesAClosedStandardError) {
  ForkedProcess process([] {
    ::close(STDERR_FILENO);
    StandardErrorLog().log("nowhere to go");
    return 42;
  });

  EXPECT_EQ(process.exitStatus(), 42);
}

}  // namespace
}  // namespace karno::platform
