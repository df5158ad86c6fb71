#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "ipc/wrapper_notification.h"
#include "platform/platform.h"
#include "spoken_program.h"
#include "started_program.h"

namespace karno::bench {
namespace {

constexpr auto kSettle = std::chrono::milliseconds(1500);
constexpr auto kPause = std::chrono::milliseconds(5);  // so that each finds its receiver asleep
constexpr int kPosts = 100;

// From the call that posts until the line that the receiver writes has been read; the median of many.
void received(benchmark::State& state, const std::vector<std::string>& command, const std::string& ready) {
  setenv("KARNO_BENCH_PROBE", "/dev/null", 1);
  setenv("KARNO_BENCH_WAIT", "1", 1);
  auto& centre = platform::host().distributedNotifications;
  for (auto _ : state) {
    SpokenProgram program(command);
    if (!program.lineWith(ready)) return state.SkipWithError("the receiver did not start");
    std::this_thread::sleep_for(kSettle);

    std::vector<double> took;
    for (int number = 0; number < kPosts; ++number) {
      const std::string text = fmt::format("bench-{}", number);
      const auto notification = wrapperNotification(text, std::nullopt);
      const std::int64_t before = monotonicNanoseconds();
      if (!centre.post(notification)) return state.SkipWithError("nothing could be posted");
      const auto line = program.lineWith("Received '" + text + "'");
      if (!line) return state.SkipWithError("a notification was not received");
      took.push_back(static_cast<double>(line->readNanoseconds - before) / 1e3);
      std::this_thread::sleep_for(kPause);
    }
    std::nth_element(took.begin(), took.begin() + kPosts / 2, took.end());
    state.counters["microseconds"] = took[kPosts / 2];
  }
}

const bool registered = [] {
  benchmark::RegisterBenchmark(
      "notification_karno",
      [](benchmark::State& state) { received(state, {Programs::staged().launcher.string()}, "(pid: "); })
      ->Iterations(1)
      ->Repetitions(9);
  benchmark::RegisterBenchmark("notification_bare",
                               [](benchmark::State& state) {
                                 received(state, {Programs::staged().bareObserver.string()}, "listening");
                               })
      ->Iterations(1)
      ->Repetitions(9);

  compare(
      {.name = "posting to the line that a notification was received, microseconds, beside a bare observer",
       .ours = {"notification_karno", "microseconds"},
       .beside = {"notification_bare", "microseconds"},
       .bound = 1.2});
  return true;
}();

}  // namespace
}  // namespace karno::bench
