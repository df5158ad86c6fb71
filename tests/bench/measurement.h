#pragma once
#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace karno::bench {

// A file's benchmarks and rows. They are made once the command line is known, in the order of the sources'
// names.
class Registration {
 public:
  using Make = void (*)();

  explicit Registration(Make make);
  static void makeAll();
};

// Registers a benchmark whose function runs once a repetition. What the function throws becomes the error of
// the run, as SkipWithError() makes one.
benchmark::internal::Benchmark* measure(const std::string& name, int repetitions,
                                        std::function<void(benchmark::State&)> function);

// Of at least one value.
double medianOf(std::vector<double> values);

}  // namespace karno::bench
