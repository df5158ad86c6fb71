#include "measurement.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <utility>

#include "load.h"

namespace karno::bench {
namespace {

std::vector<Registration::Make>& registered() {
  static std::vector<Registration::Make> all;
  return all;
}

}  // namespace

Registration::Registration(Make make) { registered().push_back(make); }

void Registration::makeAll() {
  for (const Make make : registered()) make();
}

benchmark::internal::Benchmark* measure(const std::string& name, int repetitions,
                                        std::function<void(benchmark::State&)> function) {
  const auto guarded = [function = std::move(function)](benchmark::State& state) {
    try {
      function(state);
    } catch (const std::exception& failure) {
      state.SkipWithError(failure.what());
    }
  };
  return benchmark::RegisterBenchmark(name.c_str(), guarded)
      ->Iterations(1)
      ->Repetitions(amount(repetitions, 1))
      ->Unit(benchmark::kMillisecond);
}

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace karno::bench
