#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "peers.h"
#include "workplace.h"

namespace karno::bench {
namespace {

using Clock = std::chrono::steady_clock;
using MakeLog = std::function<std::unique_ptr<PeerLog>()>;

constexpr std::size_t kBurstCalls = 200'000;
constexpr std::size_t kThroughputLines = 1'000'000;
constexpr std::string_view kMessage = "Notify[LISTEN] Received 'check-for-updates'";

double nanoseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::nano>(duration).count();
}

// Runs `work(thread)` on that many threads at once and returns what each took.
std::vector<double> onThreads(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::vector<double> took(count);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      const auto start = Clock::now();
      work(i);
      took[i] = nanoseconds(Clock::now() - start);
    });
  }
  for (std::thread& thread : threads) thread.join();
  return took;
}

// The mean is of a burst without a clock in it; the percentile is of a second burst that reads the clock once
// a call.
void logBurst(benchmark::State& state, const MakeLog& makeLog) {
  const auto threads = static_cast<std::size_t>(state.range(0));
  const std::size_t callsEach = kBurstCalls / threads;
  for (auto _ : state) {
    std::unique_ptr<PeerLog> log = makeLog();
    double total = 0;
    for (const double took : onThreads(threads, [&](std::size_t) {
           for (std::size_t i = 0; i < callsEach; ++i) log->logInfo(kMessage);
         })) {
      total += took;
    }
    state.counters["mean_ns"] = total / static_cast<double>(callsEach * threads);
    log->drain();

    log = makeLog();
    std::vector<std::vector<double>> calls(threads, std::vector<double>(callsEach));
    onThreads(threads, [&](std::size_t thread) {
      auto before = Clock::now();
      for (double& call : calls[thread]) {
        log->logInfo(kMessage);
        const auto after = Clock::now();
        call = nanoseconds(after - before);
        before = after;
      }
    });
    log->drain();
    std::vector<double> all;
    for (const std::vector<double>& each : calls) all.insert(all.end(), each.begin(), each.end());
    const auto rank = all.begin() + static_cast<std::ptrdiff_t>(all.size() * 99 / 100);
    std::nth_element(all.begin(), rank, all.end());
    state.counters["p99_ns"] = *rank;
  }
}

// From the first call until the last line is in the file.
void logThroughput(benchmark::State& state, const MakeLog& makeLog) {
  for (auto _ : state) {
    const std::unique_ptr<PeerLog> log = makeLog();
    const auto start = Clock::now();
    for (std::size_t i = 0; i < kThroughputLines; ++i) log->logInfo(kMessage);
    log->drain();
    state.counters["seconds"] = nanoseconds(Clock::now() - start) / 1e9;
  }
}

// The same with the lines counted: written, plus one for every rotation, is all of them.
void karnoThroughput(benchmark::State& state) {
  for (auto _ : state) {
    const std::unique_ptr<PeerLog> log = makeKarnoLog();
    FileCounts& counts = fileCounts();
    const std::uint64_t linesBefore = counts.linesWritten;
    const std::uint64_t rotationsBefore = counts.rotations;
    const auto start = Clock::now();
    for (std::size_t i = 0; i < kThroughputLines; ++i) log->logInfo(kMessage);
    const auto settled = [&] {
      return counts.linesWritten + counts.rotations - linesBefore - rotationsBefore >= kThroughputLines;
    };
    while (!settled() && Clock::now() - start < std::chrono::minutes(1)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    state.counters["seconds"] = nanoseconds(Clock::now() - start) / 1e9;
    state.counters["lines_written"] = static_cast<double>(counts.linesWritten - linesBefore);
    state.counters["lines_lost_to_rotation"] = static_cast<double>(counts.rotations - rotationsBefore);
    if (!settled()) state.SkipWithError("lines were lost");
  }
}

std::filesystem::path peerFile(const char* name) { return Workplace::home() / name; }

MakeLog fresh(const char* name, std::unique_ptr<PeerLog> (*make)(const std::filesystem::path&)) {
  return [name, make] {
    std::filesystem::remove(peerFile(name));
    return make(peerFile(name));
  };
}

void registerBurst(const char* name, const MakeLog& makeLog) {
  benchmark::RegisterBenchmark(name, [makeLog](benchmark::State& state) { logBurst(state, makeLog); })
      ->Arg(1)
      ->Arg(4)
      ->Iterations(1)
      ->Repetitions(7)
      ->Unit(benchmark::kMillisecond);
}

void compareBurst(const std::string& threads, const char* words) {
  const auto row = [&](const char* peer, const char* peerWords, const char* counter, const char* what,
                       double bound) {
    compare({.name = std::string("log call, ") + what + ", " + words + ", beside " + peerWords,
             .ours = {"log_burst_karno/" + threads, counter},
             .beside = {std::string(peer) + "/" + threads, counter},
             .bound = bound});
  };
  row("log_burst_spdlog", "spdlog asynchronous", "mean_ns", "mean ns", 0.35);
  row("log_burst_spdlog", "spdlog asynchronous", "p99_ns", "99th percentile ns", 0.5);
  row("log_burst_floor", "a hand-written floor", "mean_ns", "mean ns", 1.3);
}

const bool registered = [] {
  registerBurst("log_burst_karno", makeKarnoLog);
  registerBurst("log_burst_spdlog", fresh("spdlog.log", makeSpdlogAsync));
  registerBurst("log_burst_floor", fresh("floor.log", makeFloor));
  compareBurst("1", "1 thread");
  compareBurst("4", "4 threads");

  benchmark::RegisterBenchmark("log_million_karno", karnoThroughput)->Iterations(1)->Repetitions(3);
  benchmark::RegisterBenchmark(
      "log_million_spdlog",
      [](benchmark::State& state) { logThroughput(state, fresh("spdlog-million.log", makeSpdlogAsync)); })
      ->Iterations(1)
      ->Repetitions(3);
  compare({.name = "1,000,000 lines to the file, seconds, beside spdlog asynchronous",
           .ours = {"log_million_karno", "seconds"},
           .beside = {"log_million_spdlog", "seconds"},
           .bound = 0.7});
  return true;
}();

}  // namespace
}  // namespace karno::bench
