#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "command.h"
#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "receiver.h"
#include "started_program.h"
#include "workplace.h"

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

constexpr double kBytesPerMebibyte = 1 << 20;

int logLines() { return amount(1'000'000, 2'000); }
int notifications() { return amount(100'000, 100); }
int notificationsBefore() { return amount(1'000, 10); }

// Until the writer has come to the end of its queue.
auto drainTime() { return std::chrono::milliseconds(amount(3000, 300)); }

// In a program of its own, in which nothing else has been going on.
void growthOfTheLog(benchmark::State& state) {
  const fs::path folder = Workplace::home() / "growing";
  const fs::path answer = folder / "answer";
  fs::create_directories(folder);
  for (auto _ : state) {
    const double seconds =
        secondsOfCommand({"env", "HOME=" + folder.string(), Programs::staged().growingLog.string(),
                          std::to_string(logLines()), answer.string()});
    double growth = 0;
    std::uint64_t lines = 0;
    if (seconds < 0 || !(std::ifstream(answer) >> growth >> lines)) {
      return state.SkipWithError("the program that logs failed");
    }
    state.counters["mib"] = growth / kBytesPerMebibyte;
    state.counters["lines"] = static_cast<double>(lines);
    state.counters["one_mib"] = 1;
    state.counters["lines_wanted"] = logLines();
  }
}

void growthOfTheLauncher(benchmark::State& state) {
  for (auto _ : state) {
    const Receiver launcher = Receiver::launcher();
    const auto program = launcher.start();
    postAndRead(launcher, *program, 0, notificationsBefore());
    std::this_thread::sleep_for(drainTime());
    const auto before = static_cast<double>(residentBytesOf(program->processIdentifier()));

    postAndRead(launcher, *program, notificationsBefore(), notifications());
    std::this_thread::sleep_for(drainTime());
    const auto after = static_cast<double>(residentBytesOf(program->processIdentifier()));
    state.counters["mib"] = (after - before) / kBytesPerMebibyte;
    state.counters["notifications"] = notifications();  // each was waited for
    state.counters["one_mib"] = 1;
  }
}

const Registration ofGrowth([] {
  measure("growth_log", 3, growthOfTheLog);
  measure("growth_notifications", 3, growthOfTheLauncher);
  compare({.name = "growth of resident memory over 1,000,000 log lines, MiB, beside 1 MiB",
           .ours = {"growth_log", "mib", "lines"},
           .beside = {"growth_log", "one_mib", "lines_wanted"},
           .bound = 1.0});
  compare({.name = "growth of resident memory over 100,000 notifications, MiB, beside 1 MiB",
           .ours = {"growth_notifications", "mib", "notifications"},
           .beside = {"growth_notifications", "one_mib", ""},
           .bound = 1.0});
});

}  // namespace
}  // namespace karno::bench
