#pragma once
#include <benchmark/benchmark.h>

#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace karno::bench {

// A counter of a benchmark, as Google Benchmark names the run. `work` is the counter that says how much was
// done meanwhile, such as lines or children; empty for what does nothing, such as a limit.
struct Figure {
  std::string benchmark;
  std::string counter;
  std::string work;
};

// Something of ours beside something else, measured in the same run. `bound`: the largest ratio that holds.
// Where both sides count their work, both must have done the same.
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
  ComparingReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override;

  // NAME | ours | beside | ratio | bound | holds or over, from the medians of the repetitions. Rows whose
  // benchmarks did not run are left out.
  void printComparisons(std::ostream& out) const;

  // NAME | done | done beside, with a dash for what does nothing: all that a tiny load can tell.
  void printWork(std::ostream& out) const;

  // One line for each benchmark that failed and for each row that should be there and has no figures, or
  // whose sides did not do the same. `areAllWanted`: whether every benchmark was to run.
  std::vector<std::string> complaints(bool areAllWanted) const;

 private:
  bool isMeasured(const Comparison& row) const;
  bool hasRun(const Figure& figure) const { return names_.contains(figure.benchmark); }
  bool has(const Figure& figure) const;
  double median(const Figure& figure) const;
  std::set<double> work(const Figure& figure) const;
  std::string complaint(const Comparison& row) const;

  std::set<std::string> names_;
  std::vector<std::string> failures_;
  std::map<std::string, std::map<std::string, std::vector<double>>> counters_;
};

}  // namespace karno::bench
