#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "platform/platform.h"
#include "spoken_program.h"
#include "started_program.h"

namespace karno::bench {
namespace {

constexpr int kRepetitions = 15;
constexpr const char* kTrue = "/bin/true";

auto settleTime() { return std::chrono::milliseconds(amount(1500, 200)); }
int launches() { return amount(200, 5); }

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
    std::this_thread::sleep_for(settleTime());

    const std::int64_t before = monotonicNanoseconds();
    kill(child, SIGKILL);
    const auto ended = program.lineWith("Child terminated");
    if (!ended) return state.SkipWithError("the end of the child was not told");
    state.counters["microseconds"] = static_cast<double>(ended->readNanoseconds - before) / 1e3;
    state.counters["children"] = 1;
  }
}

// Starts a child and gives what tells its end, without a value when there is no child.
using Launch = std::function<std::optional<std::future<void>>()>;

// The time of the call; the child is waited for outside of it. Negative when there is no child.
double microsecondsOf(const Launch& launch) {
  const std::int64_t before = monotonicNanoseconds();
  const std::optional<std::future<void>> end = launch();
  const std::int64_t after = monotonicNanoseconds();
  if (!end) return -1;
  end->wait();
  return static_cast<double>(after - before) / 1e3;
}

// The median, since a machine that stops for a while would make the mean. Each kind alone: by turns the calls
// of both fall into two heaps, around 80 and 170 microseconds, and how many fall into which makes the ratio.
void launchChildren(benchmark::State& state, const Launch& launch) {
  for (auto _ : state) {
    std::vector<double> microseconds;
    for (int count = 0; count < launches(); ++count) {
      microseconds.push_back(microsecondsOf(launch));
      if (microseconds.back() < 0) return state.SkipWithError("the child did not start");
    }
    state.counters["microseconds"] = medianOf(microseconds);
    state.counters["children"] = static_cast<double>(microseconds.size());
  }
}

std::optional<std::future<void>> launchAsTheLauncher() {
  const auto ended = std::make_shared<std::promise<void>>();
  const auto child = platform::host().tasks.launch({.executablePath = kTrue, .arguments = {}},
                                                   [ended](const platform::TaskEnd&) { ended->set_value(); });
  return child ? std::optional(ended->get_future()) : std::nullopt;
}

// The least that can wait for a child without holding up who starts it: a thread that does nothing else.
std::optional<std::future<void>> launchOnABareThread() {
  std::promise<pid_t> started;
  std::future<pid_t> child = started.get_future();
  std::promise<void> ended;
  std::future<void> end = ended.get_future();
  std::thread(
      [](std::promise<pid_t> start, std::promise<void> finish) {
        char* const arguments[] = {const_cast<char*>(kTrue), nullptr};
        pid_t process = 0;
        if (posix_spawn(&process, kTrue, nullptr, nullptr, arguments, environ) != 0) process = 0;
        start.set_value(process);
        if (process > 0) waitpid(process, nullptr, 0);
        finish.set_value();
      },
      std::move(started), std::move(ended))
      .detach();
  return child.get() > 0 ? std::optional(std::move(end)) : std::nullopt;
}

std::vector<std::string> launcher() { return {Programs::staged().launcher.string()}; }
std::vector<std::string> bareWaiter() {
  return {Programs::staged().bareWaiter.string(), Programs::staged().probe.string()};
}

const Registration ofChildEnds([] {
  measure("child_end_karno", kRepetitions, [](benchmark::State& state) { childEnd(state, launcher()); });
  measure("child_end_bare", kRepetitions, [](benchmark::State& state) { childEnd(state, bareWaiter()); });
  measure("child_launch_karno", kRepetitions,
          [](benchmark::State& state) { launchChildren(state, launchAsTheLauncher); });
  measure("child_launch_bare", kRepetitions,
          [](benchmark::State& state) { launchChildren(state, launchOnABareThread); });

  compare({.name = "a child's end to the line in the log, microseconds, beside a bare waitid",
           .ours = {"child_end_karno", "microseconds", "children"},
           .beside = {"child_end_bare", "microseconds", "children"},
           .bound = 1.3});
  compare({.name = "launch of a child, microseconds, beside a bare posix_spawn on a thread that then waits",
           .ours = {"child_launch_karno", "microseconds", "children"},
           .beside = {"child_launch_bare", "microseconds", "children"},
           .bound = 1.3});
});

}  // namespace
}  // namespace karno::bench
