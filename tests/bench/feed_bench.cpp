#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <chrono>
#include <string>
#include <vector>

#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "platform/linux/updater/feed/appcast.h"

namespace karno::bench {
namespace {

using Clock = std::chrono::steady_clock;
using platform::updates::parseAppcast;

int manyAttributes() { return amount(64'000, 640); }
int fewAttributes() { return amount(8'000, 80); }
int turns() { return amount(15, 1); }

// As somebody would write it who wants to keep its readers busy: half of the attributes declare prefixes, for
// half as many elements that make use of them; the other half might be the signature.
std::string feedWithAttributes(int attributes) {
  std::string declarations;
  std::string elements;
  std::string signatures;
  for (int number = 0; number < attributes / 2; ++number) {
    declarations += fmt::format(" xmlns:a{}='https://elsewhere/'", number);
    signatures += fmt::format(" a{}:edSignature='no'", number);
    if (number % 2 == 0) elements += fmt::format("<a{}:version>1</a{}:version>", number, number);
  }
  return "<rss xmlns:s='http://www.andymatuschak.org/xml-namespaces/sparkle'" + declarations +
         "><channel><item>" + elements + "<s:version>7</s:version><enclosure url='https://a/b'" + signatures +
         "/></item></channel></rss>";
}

struct Side {
  explicit Side(int attributesOf) : attributes(attributesOf), feed(feedWithAttributes(attributesOf)) {}

  void takeTurn() {
    const auto begin = Clock::now();
    const auto read = parseAppcast(feed);
    const std::chrono::duration<double, std::nano> took = Clock::now() - begin;
    nanoseconds.push_back(took.count() / attributes);
    items = read ? static_cast<double>(read.value().size()) : 0;
  }

  const int attributes;
  const std::string feed;
  std::vector<double> nanoseconds;  // for each attribute
  double items = 0;
};

void readFeeds(benchmark::State& state) {
  Side many(manyAttributes());
  Side few(fewAttributes());
  for (auto _ : state) {
    for (int turn = 0; turn < turns(); ++turn) {
      few.takeTurn();
      many.takeTurn();
    }
  }
  if (many.items != 1) return state.SkipWithError("the feed was not read");
  state.counters["nanoseconds"] = medianOf(many.nanoseconds);
  state.counters["few_nanoseconds"] = medianOf(few.nanoseconds);
  state.counters["items"] = many.items;
  state.counters["few_items"] = few.items;
}

// Eight times the attributes cost eight times as much; each of them would cost eight times as much if every
// one were compared with all others.
const Registration ofFeeds([] {
  measure("feed", 3, readFeeds);
  compare({.name = "reading a feed, nanoseconds per attribute, 64,000 of them, beside 8,000",
           .ours = {"feed", "nanoseconds", "items"},
           .beside = {"feed", "few_nanoseconds", "few_items"},
           .bound = 2.5});
});

}  // namespace
}  // namespace karno::bench
