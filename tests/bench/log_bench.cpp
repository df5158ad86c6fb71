#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "peers.h"
#include "workplace.h"

namespace karno::bench {
namespace {

using Clock = std::chrono::steady_clock;
using MakeLog = std::function<std::unique_ptr<PeerLog>()>;

constexpr std::string_view kMessage = "Notify[LISTEN] Received 'check-for-updates'";

std::size_t burstCalls() { return amount(std::size_t{200'000}, std::size_t{400}); }
std::size_t throughputLines() { return amount(std::size_t{1'000'000}, std::size_t{2'000}); }
int throughputTurns() { return amount(7, 1); }

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

double sum(const std::vector<double>& values) { return std::accumulate(values.begin(), values.end(), 0.0); }

// Runs a burst of calls on a log that has just begun to wait, and gives how many lines came of it.
std::uint64_t burst(const MakeLog& makeLog, const std::function<void(PeerLog&)>& callAll) {
  const std::unique_ptr<PeerLog> log = makeLog();
  log->settle();
  const std::uint64_t before = log->lines();
  callAll(*log);
  log->drain(before + burstCalls());
  return log->lines() - before;
}

double percentile99(const std::vector<std::vector<double>>& calls) {
  std::vector<double> all;
  for (const std::vector<double>& each : calls) all.insert(all.end(), each.begin(), each.end());
  const auto rank = all.begin() + static_cast<std::ptrdiff_t>(all.size() * 99 / 100);
  std::nth_element(all.begin(), rank, all.end());
  return *rank;
}

// The mean is of a burst without a clock in it; the percentile is of a second burst that reads the clock once
// a call.
void logBurst(benchmark::State& state, const MakeLog& makeLog) {
  const auto threads = static_cast<std::size_t>(state.range(0));
  const std::size_t callsEach = burstCalls() / threads;
  for (auto _ : state) {
    std::uint64_t lines = burst(makeLog, [&](PeerLog& log) {
      const double total = sum(onThreads(threads, [&](std::size_t) {
        for (std::size_t i = 0; i < callsEach; ++i) log.logInfo(kMessage);
      }));
      state.counters["mean_ns"] = total / static_cast<double>(callsEach * threads);
    });

    std::vector<std::vector<double>> calls(threads, std::vector<double>(callsEach));
    lines += burst(makeLog, [&](PeerLog& log) {
      onThreads(threads, [&](std::size_t thread) {
        auto before = Clock::now();
        for (double& call : calls[thread]) {
          log.logInfo(kMessage);
          const auto after = Clock::now();
          call = nanoseconds(after - before);
          before = after;
        }
      });
    });
    state.counters["p99_ns"] = percentile99(calls);
    state.counters["lines"] = static_cast<double>(lines);
  }
}

// One side of the comparison of throughputs.
struct Throughput {
  MakeLog makeLog;
  std::vector<double> seconds;
  std::uint64_t lines = 0;

  // From the first call until the last line is in the file. What an earlier turn has left to be written to
  // the disk is written before.
  void takeTurn() {
    const std::unique_ptr<PeerLog> log = makeLog();
    sync();
    log->settle();
    const std::uint64_t before = log->lines();
    const auto start = Clock::now();
    for (std::size_t i = 0; i < throughputLines(); ++i) log->logInfo(kMessage);
    log->drain(before + throughputLines());
    seconds.push_back(nanoseconds(Clock::now() - start) / 1e9);
    lines += log->lines() - before;
  }
};

std::filesystem::path peerFile(const char* name) { return Workplace::home() / name; }

MakeLog fresh(const char* name, std::unique_ptr<PeerLog> (*make)(const std::filesystem::path&)) {
  return [name, make] {
    std::filesystem::remove(peerFile(name));
    return make(peerFile(name));
  };
}

// Both take turns within one run, since a busy machine changes its pace from one run to the next.
void logThroughput(benchmark::State& state) {
  Throughput ours{.makeLog = makeKarnoLog, .seconds = {}};
  Throughput beside{.makeLog = fresh("spdlog-million.log", makeSpdlogAsync), .seconds = {}};
  for (auto _ : state) {
    for (int turn = 0; turn < throughputTurns(); ++turn) {
      beside.takeTurn();
      ours.takeTurn();
    }
  }
  state.counters["seconds"] = medianOf(ours.seconds);
  state.counters["beside_seconds"] = medianOf(beside.seconds);
  state.counters["lines"] = static_cast<double>(ours.lines);
  state.counters["beside_lines"] = static_cast<double>(beside.lines);
}

void measureBurst(const char* name, const MakeLog& makeLog) {
  measure(name, 9, [makeLog](benchmark::State& state) { logBurst(state, makeLog); })->Arg(1)->Arg(4);
}

void compareBurst(const std::string& threads, const char* words) {
  const auto row = [&](const char* peer, const char* peerWords, const char* counter, const char* what,
                       double bound) {
    compare({.name = std::string("log call, ") + what + ", " + words + ", beside " + peerWords,
             .ours = {"log_burst_karno/" + threads, counter, "lines"},
             .beside = {std::string(peer) + "/" + threads, counter, "lines"},
             .bound = bound});
  };
  row("log_burst_spdlog", "spdlog asynchronous", "mean_ns", "mean ns", 0.2);
  row("log_burst_spdlog", "spdlog asynchronous", "p99_ns", "99th percentile ns", 0.5);
  row("log_burst_floor", "a hand-written floor", "mean_ns", "mean ns", 1.2);
}

const Registration ofLogs([] {
  measureBurst("log_burst_karno", makeKarnoLog);
  measureBurst("log_burst_spdlog", fresh("spdlog.log", makeSpdlogAsync));
  measureBurst("log_burst_floor", fresh("floor.log", makeFloor));
  compareBurst("1", "1 thread");
  compareBurst("4", "4 threads");

  measure("log_million", 1, logThroughput);
  compare({.name = "1,000,000 lines to the file, seconds, beside spdlog asynchronous",
           .ours = {"log_million", "seconds", "lines"},
           .beside = {"log_million", "beside_seconds", "beside_lines"},
           .bound = 0.6});
});

}  // namespace
}  // namespace karno::bench
