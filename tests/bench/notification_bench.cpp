#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "receiver.h"
#include "spoken_program.h"

namespace karno::bench {
namespace {

constexpr auto kPause = std::chrono::milliseconds(5);  // so that each finds its receiver asleep

int singlePosts() { return amount(100, 5); }
int burstPosts() { return amount(10'000, 100); }

// From the call that posts until the line that the receiver writes has been read; the median of many.
void oneByOne(benchmark::State& state, const Receiver& receiver) {
  for (auto _ : state) {
    const auto program = receiver.start();
    std::vector<double> took;
    for (int number = 0; number < singlePosts(); ++number) {
      const std::int64_t before = monotonicNanoseconds();
      postNumber(number);
      took.push_back(static_cast<double>(received(*program, number) - before) / 1e3);
      std::this_thread::sleep_for(kPause);
    }
    state.counters["microseconds"] = medianOf(took);
    state.counters["notifications"] = static_cast<double>(took.size());
  }
}

// From the first call that posts until the last line has been read.
void burst(benchmark::State& state, const Receiver& receiver) {
  for (auto _ : state) {
    const auto program = receiver.start();
    const std::int64_t before = monotonicNanoseconds();
    const std::int64_t last = postAndRead(*program, 0, burstPosts());
    state.counters["seconds"] = static_cast<double>(last - before) / 1e9;
    state.counters["notifications"] = burstPosts();  // each was waited for
  }
}

const Registration ofNotifications([] {
  measure("notification_karno", 9, [](benchmark::State& state) { oneByOne(state, Receiver::launcher()); });
  measure("notification_bare", 9, [](benchmark::State& state) { oneByOne(state, Receiver::bareObserver()); });
  measure("notification_burst_karno", 9, [](benchmark::State& state) { burst(state, Receiver::launcher()); });
  measure("notification_burst_bare", 9,
          [](benchmark::State& state) { burst(state, Receiver::bareObserver()); });

  compare(
      {.name = "posting to the line that a notification was received, microseconds, beside a bare observer",
       .ours = {"notification_karno", "microseconds", "notifications"},
       .beside = {"notification_bare", "microseconds", "notifications"},
       .bound = 1.1});
  // The launcher writes two lines for each, the observer one.
  compare({.name = "10,000 notifications to the last line, seconds, beside a bare observer",
           .ours = {"notification_burst_karno", "seconds", "notifications"},
           .beside = {"notification_burst_bare", "seconds", "notifications"},
           .bound = 1.5});
});

}  // namespace
}  // namespace karno::bench
