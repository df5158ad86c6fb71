#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>
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

// A receiver that runs, and how long each notification to it took.
struct Side {
  explicit Side(Receiver of) : receiver(std::move(of)), program(receiver.start()) {}

  // From the call that posts until the line that the receiver writes has been read.
  void takeTurn(int number) {
    std::this_thread::sleep_for(kPause);
    const std::int64_t before = monotonicNanoseconds();
    postNumber(receiver, number);
    microseconds.push_back(static_cast<double>(received(*program, number) - before) / 1e3);
  }

  const Receiver receiver;
  const std::unique_ptr<SpokenProgram> program;
  std::vector<double> microseconds;
};

// By turns, since a busy machine changes its pace within a second. The medians of many.
void oneByOne(benchmark::State& state) {
  for (auto _ : state) {
    Side our(Receiver::launcher());
    Side bare(Receiver::bareObserver());
    for (int number = 0; number < singlePosts(); ++number) {
      const bool isOurs = number % 2 == 0;
      (isOurs ? our : bare).takeTurn(number);
      (isOurs ? bare : our).takeTurn(number);
    }
    state.counters["microseconds"] = medianOf(our.microseconds);
    state.counters["notifications"] = static_cast<double>(our.microseconds.size());
    state.counters["bare_microseconds"] = medianOf(bare.microseconds);
    state.counters["bare_notifications"] = static_cast<double>(bare.microseconds.size());
  }
}

// From the first call that posts until the last line has been read.
void burst(benchmark::State& state, const Receiver& receiver) {
  for (auto _ : state) {
    const auto program = receiver.start();
    const std::int64_t before = monotonicNanoseconds();
    const std::int64_t last = postAndRead(receiver, *program, 0, burstPosts());
    state.counters["seconds"] = static_cast<double>(last - before) / 1e9;
    state.counters["notifications"] = burstPosts();  // each was waited for
  }
}

const Registration ofNotifications([] {
  measure("notification", 9, oneByOne);
  measure("notification_burst_karno", 9, [](benchmark::State& state) { burst(state, Receiver::launcher()); });
  measure("notification_burst_bare", 9,
          [](benchmark::State& state) { burst(state, Receiver::bareObserver()); });

  compare(
      {.name = "posting to the line that a notification was received, microseconds, beside a bare observer",
       .ours = {"notification", "microseconds", "notifications"},
       .beside = {"notification", "bare_microseconds", "bare_notifications"},
       .bound = 1.1});
  // The launcher writes two lines for each, the observer one.
  compare({.name = "10,000 notifications to the last line, seconds, beside a bare observer",
           .ours = {"notification_burst_karno", "seconds", "notifications"},
           .beside = {"notification_burst_bare", "seconds", "notifications"},
           .bound = 1.5});
});

}  // namespace
}  // namespace karno::bench
