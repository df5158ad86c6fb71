#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <string_view>

#include "comparison.h"
#include "gettext_peer.h"
#include "load.h"
#include "localise/karno_localise.h"
#include "measurement.h"
#include "workplace.h"

namespace karno::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view kName = "Quarterly report 2024.pdf";
constexpr std::string_view kText = "“Quarterly report 2024.pdf” and 3 more";

int calls() { return amount(200'000, 500); }

template <class MakeText>
void textLookUp(benchmark::State& state, const MakeText& makeText) {
  for (auto _ : state) {
    if (makeText() != kText) return state.SkipWithError("the text came out wrong");
    std::size_t bytes = 0;
    const auto start = Clock::now();
    for (int call = 0; call < calls(); ++call) bytes += makeText().size();
    state.counters["mean_ns"] =
        std::chrono::duration<double, std::nano>(Clock::now() - start).count() / calls();
    state.counters["bytes"] = static_cast<double>(bytes);
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

const Registration ofTexts([] {
  measure("text_lookup_karno", 7, karnoText);
  measure("text_lookup_gettext", 7, gettextText);
  compare({.name = "token lookup with two placeholders, mean ns, beside gettext and {fmt}",
           .ours = {"text_lookup_karno", "mean_ns", "bytes"},
           .beside = {"text_lookup_gettext", "mean_ns", "bytes"},
           .bound = 2.0});
});

}  // namespace
}  // namespace karno::bench
