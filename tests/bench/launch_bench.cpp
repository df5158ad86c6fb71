#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "started_program.h"

namespace karno::bench {
namespace {

constexpr double kWriterWakeUpsPerSecond = 10;
constexpr int kStarts = 15;

auto startSettleTime() { return std::chrono::milliseconds(amount(3000, 300)); }
double idleSeconds() { return amount(20.0, 0.5); }

std::vector<std::string> launcherCommand() { return {Programs::staged().launcher.string()}; }
std::vector<std::string> minimal() {
  return {Programs::staged().minimal.string(), Programs::staged().probe.string()};
}

void start(benchmark::State& state, const std::vector<std::string>& command) {
  for (auto _ : state) {
    const StartedProgram program(command, false);
    const double seconds = program.secondsToChild();
    if (seconds < 0) return state.SkipWithError("the child did not start");
    state.counters["seconds"] = seconds;
    state.counters["children"] = 1;
  }
}

// Both run side by side with their children waiting, so that both are measured under the same conditions.
void idle(benchmark::State& state) {
  for (auto _ : state) {
    const StartedProgram ours(launcherCommand(), true);
    if (ours.secondsToChild() < 0) return state.SkipWithError("the launcher's child did not start");
    const StartedProgram beside(minimal(), true);
    if (beside.secondsToChild() < 0) return state.SkipWithError("the minimal program's child did not start");
    std::this_thread::sleep_for(startSettleTime());

    const auto wakeUps = ours.wakeUps();
    const double processor = ours.processorSeconds();
    std::this_thread::sleep_for(std::chrono::duration<double>(idleSeconds()));

    state.counters["wake_ups"] = static_cast<double>(ours.wakeUps() - wakeUps);
    state.counters["writer_wake_ups"] = idleSeconds() * kWriterWakeUpsPerSecond;
    state.counters["processor_seconds"] = ours.processorSeconds() - processor;
    state.counters["idle_seconds"] = idleSeconds();
    state.counters["children"] = 1;
    state.counters["resident_mib"] = static_cast<double>(ours.residentBytes()) / (1 << 20);
    state.counters["minimal_resident_mib"] = static_cast<double>(beside.residentBytes()) / (1 << 20);
  }
}

const Registration ofLaunches([] {
  measure("start_karno", kStarts, [](benchmark::State& state) { start(state, launcherCommand()); });
  measure("start_minimal", kStarts, [](benchmark::State& state) { start(state, minimal()); });
  measure("idle", 1, idle);

  compare({.name = "process start to the child's exec, seconds, beside a minimal program",
           .ours = {"start_karno", "seconds", "children"},
           .beside = {"start_minimal", "seconds", "children"},
           .bound = 1.05});
  compare({.name = "idle for 20 s, wake-ups, beside the log writer's own",
           .ours = {"idle", "wake_ups", "children"},
           .beside = {"idle", "writer_wake_ups", ""},
           .bound = 1.0});
  compare({.name = "idle for 20 s, processor seconds, beside the time that passed",
           .ours = {"idle", "processor_seconds", "children"},
           .beside = {"idle", "idle_seconds", ""},
           .bound = 0.005});
  compare({.name = "idle, resident MiB, beside a minimal program",
           .ours = {"idle", "resident_mib", "children"},
           .beside = {"idle", "minimal_resident_mib", "children"},
           .bound = 1.1});
});

}  // namespace
}  // namespace karno::bench
