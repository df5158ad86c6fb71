#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "command.h"
#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "workplace.h"

namespace karno::bench {
namespace {

constexpr int kNoLauncherRuns = 3;

int statusTurns() { return amount(60, 3); }

// Both take turns within one run, since a busy machine changes its pace from one run to the next.
void status(benchmark::State& state) {
  const std::vector<std::string> ours{builtBundle() / "Contents/MacOS/karnoctl", "status"};
  const std::vector<std::string> beside{"/bin/true"};
  std::vector<double> seconds;
  std::vector<double> besideSeconds;
  for (auto _ : state) {
    for (int turn = 0; turn < statusTurns(); ++turn) {
      besideSeconds.push_back(secondsOfCommand(beside));
      seconds.push_back(secondsOfCommand(ours, kNoLauncherRuns));
      if (besideSeconds.back() < 0 || seconds.back() < 0) return state.SkipWithError("a command failed");
    }
  }
  state.counters["milliseconds"] = 1e3 * medianOf(seconds);
  state.counters["beside_milliseconds"] = 1e3 * medianOf(besideSeconds);
  state.counters["commands"] = static_cast<double>(seconds.size());
  state.counters["beside_commands"] = static_cast<double>(besideSeconds.size());
}

const Registration ofStatuses([] {
  measure("status", 1, status);
  compare({.name = "karnoctl status, milliseconds, beside true",
           .ours = {"status", "milliseconds", "commands"},
           .beside = {"status", "beside_milliseconds", "beside_commands"},
           .bound = 80});
});

}  // namespace
}  // namespace karno::bench
