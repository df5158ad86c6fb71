#pragma once
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace karno::bench {

// A counter of a benchmark, as Google Benchmark names the run.
struct Figure {
  std::string benchmark;
  std::string counter;
};

// Something of ours beside something else, measured in the same run. `bound`: the largest ratio that holds.
struct Comparison {
  std::string name;
  Figure ours;
  Figure beside;
  double bound = 1.0;
};

// Adds a row to the table that closes a run.
void compare(Comparison comparison);

// Prints as usual while the benchmarks run and keeps every repetition's counters.
class ComparingReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;

  // NAME | ours | beside | ratio | bound | holds or over, from the medians of the repetitions. Rows whose
  // benchmarks did not run are left out.
  void printComparisons(std::ostream& out) const;

 private:
  double median(const Figure& figure) const;
  bool has(const Figure& figure) const;

  std::map<std::string, std::map<std::string, std::vector<double>>> counters_;
};

}  // namespace karno::bench
