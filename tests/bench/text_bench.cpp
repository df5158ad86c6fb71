#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <string_view>

#include "comparison.h"
#include "gettext_peer.h"
#include "localise/karno_localise.h"
#include "workplace.h"

namespace karno::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kCalls = 200'000;
constexpr std::string_view kName = "Quarterly report 2024.pdf";
constexpr std::string_view kText = "“Quarterly report 2024.pdf” and 3 more";

template <class MakeText>
void textLookUp(benchmark::State& state, const MakeText& makeText) {
  for (auto _ : state) {
    if (makeText() != kText) {
      state.SkipWithError("the text came out wrong");
      return;
    }
    const auto start = Clock::now();
    for (int call = 0; call < kCalls; ++call) benchmark::DoNotOptimize(makeText());
    state.counters["mean_ns"] =
        std::chrono::duration<double, std::nano>(Clock::now() - start).count() / kCalls;
  }
}

void karnoText(benchmark::State& state) {
  textLookUp(state, [] { return KarnoLocalise::item(kName, 3); });
}

void gettextText(benchmark::State& state) {
  const GettextPeer peer(builtBundle() / "Contents/Resources/Base.lproj/Strings.json",
                         Workplace::home() / "locale");
  textLookUp(state, [&peer] { return peer.itemAndMore(kName, 3); });
}

const bool registered = [] {
  benchmark::RegisterBenchmark("text_lookup_karno", karnoText)->Iterations(1)->Repetitions(7);
  benchmark::RegisterBenchmark("text_lookup_gettext", gettextText)->Iterations(1)->Repetitions(7);
  compare({.name = "token lookup with two placeholders, mean ns, beside gettext and {fmt}",
           .ours = {"text_lookup_karno", "mean_ns"},
           .beside = {"text_lookup_gettext", "mean_ns"},
           .bound = 2.0});
  return true;
}();

}  // namespace
}  // namespace karno::bench
