#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "command.h"
#include "comparison.h"
#include "measurement.h"
#include "universal_program.h"
#include "workplace.h"

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

constexpr double kMebibyte = 1 << 20;

void setSize(benchmark::State& state, double bytes) {
  state.counters["mib"] = bytes / kMebibyte;
  state.counters["one_mib"] = 1;
}

void sizeOfTheLauncher(benchmark::State& state) {
  const fs::path stripped = Workplace::home() / "stripped";
  for (auto _ : state) {
    const double seconds =
        secondsOfCommand({"strip", "-o", stripped.string(), builtBundle() / "Contents/MacOS/Karno"});
    if (seconds < 0) return state.SkipWithError("strip failed");
    setSize(state, static_cast<double>(fs::file_size(stripped)));
  }
}

// scripts/cross-macos strips it.
fs::path macOSProgram() {
  const char* const other = std::getenv("KARNO_BENCH_MACOS_PROGRAM");
  return other != nullptr ? other : KARNO_MACOS_PROGRAM;
}

void sizeOfASlice(benchmark::State& state, Processor processor) {
  for (auto _ : state) setSize(state, static_cast<double>(sizeOfSlice(macOSProgram(), processor)));
}

void addSize(const std::string& name, const std::string& what, double bound) {
  compare({.name = "size of " + what + ", MiB, beside 1 MiB",
           .ours = {name, "mib", ""},
           .beside = {name, "one_mib", ""},
           .bound = bound});
}

const Registration ofSizes([] {
  measure("size_launcher", 1, sizeOfTheLauncher);
  measure("size_macos_x86_64", 1, [](benchmark::State& state) { sizeOfASlice(state, Processor::Intel); });
  measure("size_macos_arm64", 1, [](benchmark::State& state) { sizeOfASlice(state, Processor::Arm); });
  addSize("size_launcher", "the stripped launcher", 3);
  addSize("size_macos_x86_64", "the launcher's slice for Intel Macs", 3);
  addSize("size_macos_arm64", "the launcher's slice for Apple silicon", 3);
});

}  // namespace
}  // namespace karno::bench
