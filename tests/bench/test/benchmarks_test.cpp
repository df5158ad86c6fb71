#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "subprocess.h"

namespace karno::bench {
namespace {

using ::testing::HasSubstr;
using namespace std::string_view_literals;

constexpr std::chrono::seconds kLimit(110);

// A universal program's header with a slice for each processor, the way it is read for its sizes.
class UniversalProgram {
 public:
  UniversalProgram() {
    std::ofstream(path_, std::ios::binary) << "\xCA\xFE\xBA\xBE\0\0\0\2"sv
                                           << "\x01\0\0\x07\0\0\0\3\0\0\x40\0\0\0\x10\0\0\0\0\x0E"sv
                                           << "\x01\0\0\x0C\0\0\0\0\0\0\x80\0\0\0\x20\0\0\0\0\x0E"sv;
  }
  ~UniversalProgram() { std::filesystem::remove(path_); }
  UniversalProgram(const UniversalProgram&) = delete;
  UniversalProgram& operator=(const UniversalProgram&) = delete;

  std::string path() const { return path_; }

 private:
  const std::string path_ = testing::TempDir() + "karno-universal-" + std::to_string(::getpid());
};

test::CommandResult measureTinyLoad(const std::string& macOSProgram,
                                    const std::vector<std::string>& options = {}) {
  std::vector<std::string> command{KARNO_WITH_DISPLAY, "env", "KARNO_BENCH_MACOS_PROGRAM=" + macOSProgram,
                                   KARNO_BENCH, "--tiny"};
  command.insert(command.end(), options.begin(), options.end());
  return test::runCommand(command, kLimit);
}

// The names of the rows of the table that closes a run.
std::vector<std::string> rowsIn(const std::string& output) {
  std::vector<std::string> rows;
  std::istringstream lines(output.substr(std::min(output.find("\nNAME | "), output.size())));
  for (std::string line; std::getline(lines, line);) {
    if (line.find(" | ") != std::string::npos) rows.push_back(line.substr(0, line.find(" | ")));
  }
  return rows;
}

// A run ends with 0 only when both sides of each row counted the same work.
TEST(Benchmarks, GiveEveryRowAndDoTheSameOnBothSides) {
  const UniversalProgram macOS;

  const test::CommandResult result = measureTinyLoad(macOS.path());

  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_THAT(
      rowsIn(result.output),
      testing::UnorderedElementsAre(
          "NAME",  //
          "log call, mean ns, 1 thread, beside spdlog asynchronous",
          "log call, 99th percentile ns, 1 thread, beside spdlog asynchronous",
          "log call, mean ns, 1 thread, beside a hand-written floor",
          "log call, mean ns, 4 threads, beside spdlog asynchronous",
          "log call, 99th percentile ns, 4 threads, beside spdlog asynchronous",
          "log call, mean ns, 4 threads, beside a hand-written floor",
          "1,000,000 lines to the file, seconds, beside spdlog asynchronous",
          "growth of resident memory over 1,000,000 log lines, MiB, beside 1 MiB",
          "token lookup with two placeholders, mean ns, beside gettext and {fmt}",
          "the whole check of macFUSE, seconds, beside popen() of its two shell lines",
          "process start to the child's exec, seconds, beside a minimal program",
          "launch of a child, microseconds, beside a bare posix_spawn on a thread that then waits",
          "a child's end to the line in the log, microseconds, beside a bare waitid",
          "posting to the line that a notification was received, microseconds, beside a bare observer",
          "10,000 notifications to the last line, seconds, beside a bare observer",
          "growth of resident memory over 100,000 notifications, MiB, beside 1 MiB",
          "user-selected-quit to the process's end, seconds, beside the flush's own wait",
          "karnoctl status, milliseconds, beside true",
          "idle for 20 s, wake-ups, beside the log writer's own",
          "idle for 20 s, processor seconds, beside the time that passed",
          "idle, resident MiB, beside a minimal program",
          "update verify and unpack 100 MB zip, seconds, beside openssl and unzip",
          "anonymous memory while unpacking above idle, MB, zip",
          "update verify and unpack 100 MB tar.gz, seconds, beside openssl and tar",
          "anonymous memory while unpacking above idle, MB, tar.gz",
          "reading a feed, nanoseconds per attribute, 64,000 of them, beside 8,000",
          "size of the stripped launcher, MiB, beside 1 MiB",
          "size of the launcher's slice for Intel Macs, MiB, beside 1 MiB",
          "size of the launcher's slice for Apple silicon, MiB, beside 1 MiB"));
}

TEST(Benchmarks, TellWhatAnExceptionSaysAndWhichRowIsMissing) {
  const test::CommandResult result =
      measureTinyLoad("/nowhere/Karno", {"--benchmark_filter=size_macos_arm64"});

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output,
              HasSubstr("\nkarno_bench: size_macos_arm64: /nowhere/Karno is no universal program; "
                        "scripts/cross-macos makes it\n"
                        "karno_bench: not measured: size of the launcher's slice for Apple silicon, MiB, "
                        "beside 1 MiB\n"));
}

TEST(Benchmarks, RefuseAFilterThatNamesNone) {
  const test::CommandResult result = measureTinyLoad("", {"--benchmark_filter=no_such_benchmark"});

  EXPECT_EQ(result.status, 64);
  EXPECT_THAT(result.output, HasSubstr("karno_bench: the filter names no benchmark\n"));
}

test::CommandResult scriptsBench(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), KARNO_BENCH_SCRIPT);
  return test::runCommand(arguments, kLimit);
}

TEST(BenchScript, ExplainsItself) {
  const test::CommandResult result = scriptsBench({"--help"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, testing::StartsWith("usage: scripts/bench [--markdown] [FILTER]\n"));
  EXPECT_EQ(scriptsBench({"-h"}).output, result.output);
}

class WrongUseOfBench : public testing::TestWithParam<std::pair<std::vector<std::string>, const char*>> {};

TEST_P(WrongUseOfBench, IsSaidInOneLine) {
  const auto& [arguments, line] = GetParam();

  const test::CommandResult result = scriptsBench(arguments);

  EXPECT_EQ(result.status, 64);
  EXPECT_EQ(result.output, line);
}

using Arguments = std::vector<std::string>;
INSTANTIATE_TEST_SUITE_P(
    Commands, WrongUseOfBench,
    testing::Values(std::pair(Arguments{"log_burst", "idle"}, "scripts/bench: one FILTER at most\n"),
                    std::pair(Arguments{"--markdown", "idle"},
                              "scripts/bench: --markdown measures everything and takes no FILTER\n"),
                    std::pair(Arguments{"--fast"}, "scripts/bench: there is no option --fast\n"),
                    std::pair(Arguments{""}, "scripts/bench: the FILTER is empty\n"),
                    std::pair(Arguments{"log_("}, "scripts/bench: log_( is no regular expression\n")));

}  // namespace
}  // namespace karno::bench
