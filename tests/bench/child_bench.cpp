#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "platform/platform.h"
#include "spoken_program.h"
#include "started_program.h"

namespace karno::bench {
namespace {

constexpr auto kSettle = std::chrono::milliseconds(1500);
constexpr int kLaunches = 100;
constexpr const char* kTrue = "/bin/true";

// The process identifier in "... (pid: 4711)"; 0 when there is none.
pid_t childIn(const std::string& line) {
  const std::size_t place = line.find("(pid: ");
  return place == std::string::npos ? 0 : std::stoi(line.substr(place + 6));
}

// From the signal that ends the child until the line that says so has been read.
void childEnd(benchmark::State& state, const std::vector<std::string>& command) {
  setenv("KARNO_BENCH_PROBE", "/dev/null", 1);
  setenv("KARNO_BENCH_WAIT", "1", 1);
  for (auto _ : state) {
    SpokenProgram program(command);
    const auto launched = program.lineWith("(pid: ");
    const pid_t child = launched ? childIn(launched->text) : 0;
    if (child < 1) return state.SkipWithError("the child did not start");
    std::this_thread::sleep_for(kSettle);

    const std::int64_t before = monotonicNanoseconds();
    kill(child, SIGKILL);
    const auto ended = program.lineWith("Child terminated");
    if (!ended) return state.SkipWithError("the end of the child was not told");
    state.counters["microseconds"] = static_cast<double>(ended->readNanoseconds - before) / 1e3;
  }
}

// The mean time of one call; the children are waited for outside of it.
void launch(benchmark::State& state) {
  platform::Tasks& tasks = platform::host().tasks;
  for (auto _ : state) {
    std::int64_t total = 0;
    for (int count = 0; count < kLaunches; ++count) {
      const auto ended = std::make_shared<std::promise<void>>();
      const std::int64_t before = monotonicNanoseconds();
      const auto child = tasks.launch({.executablePath = kTrue, .arguments = {}},
                                      [ended](const platform::TaskEnd&) { ended->set_value(); });
      total += monotonicNanoseconds() - before;
      if (!child) return state.SkipWithError("the child did not start");
      ended->get_future().wait();
    }
    state.counters["microseconds"] = static_cast<double>(total) / kLaunches / 1e3;
  }
}

void bareSpawn(benchmark::State& state) {
  for (auto _ : state) {
    std::int64_t total = 0;
    for (int count = 0; count < kLaunches; ++count) {
      char* const arguments[] = {const_cast<char*>(kTrue), nullptr};
      pid_t child = 0;
      const std::int64_t before = monotonicNanoseconds();
      const int error = posix_spawn(&child, kTrue, nullptr, nullptr, arguments, environ);
      total += monotonicNanoseconds() - before;
      if (error != 0) return state.SkipWithError("the child did not start");
      waitpid(child, nullptr, 0);
    }
    state.counters["microseconds"] = static_cast<double>(total) / kLaunches / 1e3;
  }
}

std::vector<std::string> launcher() { return {Programs::staged().launcher.string()}; }
std::vector<std::string> bareWaiter() {
  return {Programs::staged().bareWaiter.string(), Programs::staged().probe.string()};
}

const bool registered = [] {
  benchmark::RegisterBenchmark("child_end_karno",
                               [](benchmark::State& state) { childEnd(state, launcher()); })
      ->Iterations(1)
      ->Repetitions(15);
  benchmark::RegisterBenchmark("child_end_bare",
                               [](benchmark::State& state) { childEnd(state, bareWaiter()); })
      ->Iterations(1)
      ->Repetitions(15);
  benchmark::RegisterBenchmark("child_launch_karno", launch)->Iterations(1)->Repetitions(15);
  benchmark::RegisterBenchmark("child_launch_bare", bareSpawn)->Iterations(1)->Repetitions(15);

  compare({.name = "a child's end to the line in the log, microseconds, beside a bare waitid",
           .ours = {"child_end_karno", "microseconds"},
           .beside = {"child_end_bare", "microseconds"},
           .bound = 2.0});
  compare({.name = "launch of a child, microseconds, beside a bare posix_spawn",
           .ours = {"child_launch_karno", "microseconds"},
           .beside = {"child_launch_bare", "microseconds"},
           .bound = 1.5});
  return true;
}();

}  // namespace
}  // namespace karno::bench
