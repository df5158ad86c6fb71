#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "started_program.h"

namespace karno::bench {
namespace {

constexpr auto kSettle = std::chrono::seconds(3);
constexpr double kIdleSeconds = 20;
constexpr double kWriterWakeUpsPerSecond = 10;

std::vector<std::string> launcher() { return {Programs::staged().launcher.string()}; }
std::vector<std::string> minimal() {
  return {Programs::staged().minimal.string(), Programs::staged().probe.string()};
}

void start(benchmark::State& state, const std::vector<std::string>& command) {
  for (auto _ : state) {
    const StartedProgram program(command, false);
    const double seconds = program.secondsToChild();
    if (seconds < 0) {
      state.SkipWithError("the child did not start");
      return;
    }
    state.SetIterationTime(seconds);
    state.counters["seconds"] = seconds;
  }
}

// Both run side by side with their children waiting, so that both are measured under the same conditions.
void idle(benchmark::State& state) {
  for (auto _ : state) {
    const StartedProgram ours(launcher(), true);
    if (ours.secondsToChild() < 0) return state.SkipWithError("the launcher's child did not start");
    const StartedProgram beside(minimal(), true);
    if (beside.secondsToChild() < 0) return state.SkipWithError("the minimal program's child did not start");
    std::this_thread::sleep_for(kSettle);

    const auto wakeUps = ours.wakeUps();
    const double processor = ours.processorSeconds();
    std::this_thread::sleep_for(std::chrono::duration<double>(kIdleSeconds));

    state.counters["wake_ups"] = static_cast<double>(ours.wakeUps() - wakeUps);
    state.counters["writer_wake_ups"] = kIdleSeconds * kWriterWakeUpsPerSecond;
    state.counters["processor_seconds"] = ours.processorSeconds() - processor;
    state.counters["idle_seconds"] = kIdleSeconds;
    state.counters["resident_mib"] = static_cast<double>(ours.residentBytes()) / (1 << 20);
    state.counters["minimal_resident_mib"] = static_cast<double>(beside.residentBytes()) / (1 << 20);
  }
}

const bool registered = [] {
  benchmark::RegisterBenchmark("start_karno", [](benchmark::State& state) { start(state, launcher()); })
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(15)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("start_minimal", [](benchmark::State& state) { start(state, minimal()); })
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(15)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("idle", idle)->Iterations(1)->Unit(benchmark::kSecond);

  compare({.name = "process start to the child's exec, seconds, beside a minimal program",
           .ours = {"start_karno", "seconds"},
           .beside = {"start_minimal", "seconds"},
           .bound = 1.15});
  compare({.name = "idle for 20 s, wake-ups, beside the log writer's own",
           .ours = {"idle", "wake_ups"},
           .beside = {"idle", "writer_wake_ups"},
           .bound = 1.0});
  compare({.name = "idle for 20 s, processor seconds, beside the time that passed",
           .ours = {"idle", "processor_seconds"},
           .beside = {"idle", "idle_seconds"},
           .bound = 0.005});
  compare({.name = "idle, resident MiB, beside a minimal program",
           .ours = {"idle", "resident_mib"},
           .beside = {"idle", "minimal_resident_mib"},
           .bound = 1.15});
  return true;
}();

}  // namespace
}  // namespace karno::bench
