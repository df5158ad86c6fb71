#include <benchmark/benchmark.h>

#include <cstdint>

#include "comparison.h"
#include "ipc/wrapper_notification.h"
#include "measurement.h"
#include "platform/platform.h"
#include "receiver.h"

namespace karno::bench {
namespace {

// The line with the reason is in the queue when the flush looks, so it waits once. The application then waits
// another quarter of a second for its last line, which is within the bound.
constexpr double kFlushWaitSeconds = 1.0;

// From the call that posts until the process is gone.
void quit(benchmark::State& state) {
  for (auto _ : state) {
    const auto program = Receiver::launcher().start();
    const auto notification = wrapperNotification("user-selected-quit", std::nullopt);
    const std::int64_t before = monotonicNanoseconds();
    if (!platform::host().distributedNotifications.post(notification)) {
      return state.SkipWithError("nothing could be posted");
    }
    const auto end = program->endNanoseconds();
    if (!end) return state.SkipWithError("the launcher did not end");
    state.counters["seconds"] = static_cast<double>(*end - before) / 1e9;
    state.counters["flush_seconds"] = kFlushWaitSeconds;
    state.counters["launchers"] = 1;
  }
}

const Registration ofQuits([] {
  measure("quit", 9, quit);
  compare({.name = "user-selected-quit to the process's end, seconds, beside the flush's own wait",
           .ours = {"quit", "seconds", "launchers"},
           .beside = {"quit", "flush_seconds", ""},
           .bound = 1.3});
});

}  // namespace
}  // namespace karno::bench
