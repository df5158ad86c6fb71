#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "system/fuse_manager.h"
#include "system/karno_os_info_manager.h"
#include "workplace.h"

namespace karno::bench {
namespace {

int checkTurns() { return amount(40, 2); }

// The facts about the system are gathered anew each time, as they are once in a run of the launcher.
bool checkAsTheLauncher() {
  KarnoOSInfoManager& system = KarnoOSInfoManager::instance();
  system.buildSoftwareVersion();
  system.buildCpuInfo();
  return FuseManager::instance().checkFuseIsInstalledInSystem(false);
}

// Whether the shell line printed anything.
bool runBare(const std::string& line, int& commands) {
  std::FILE* const pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return false;
  ++commands;
  std::array<char, 4096> buffer;
  std::size_t pieces = 0;
  while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe) != nullptr) ++pieces;
  return pclose(pipe) == 0 && pieces > 0;
}

// The shell lines of the check and nothing else, as the C library runs them.
bool runTheCommandsOnly(int& commands) {
  const std::string shell = Workplace::machine().string() + "/bin/sh --noprofile -c ";
  return runBare(shell + "\"sw_vers\"", commands) && runBare(shell + "\"uname -m\"", commands);
}

// Negative when it failed.
template <class Work>
double secondsOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  if (!work()) return -1;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Both take turns within one run, since a busy machine changes its pace from one run to the next.
void fuseCheck(benchmark::State& state) {
  Workplace::layOutMachine();
  if (!checkAsTheLauncher()) return state.SkipWithError("the machine does not pass the check");
  std::vector<double> ours;
  std::vector<double> beside;
  const std::uint64_t commandsBefore = shellCommands();
  int commands = 0;
  for (auto _ : state) {
    for (int turn = 0; turn < checkTurns(); ++turn) {
      beside.push_back(secondsOf([&] { return runTheCommandsOnly(commands); }));
      ours.push_back(secondsOf(checkAsTheLauncher));
      if (beside.back() < 0 || ours.back() < 0) return state.SkipWithError("a command printed nothing");
    }
  }
  state.counters["seconds"] = medianOf(ours);
  state.counters["bare_seconds"] = medianOf(beside);
  state.counters["commands"] = static_cast<double>(shellCommands() - commandsBefore);
  state.counters["bare_commands"] = commands;
}

const Registration ofFuseChecks([] {
  measure("fuse_check", 3, fuseCheck);
  compare({.name = "the whole check of macFUSE, seconds, beside popen() of its two shell lines",
           .ours = {"fuse_check", "seconds", "commands"},
           .beside = {"fuse_check", "bare_seconds", "bare_commands"},
           .bound = 1.05});
});

}  // namespace
}  // namespace karno::bench
