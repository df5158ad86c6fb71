#include "comparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>
#include <utility>

namespace karno::bench {
namespace {

std::vector<Comparison>& comparisons() {
  static std::vector<Comparison> all;
  return all;
}

// The run's name without what Google Benchmark appends to it for iterations, repetitions and manual time.
std::string plainName(const benchmark::BenchmarkReporter::Run& run) {
  return run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
}

}  // namespace

void compare(Comparison comparison) { comparisons().push_back(std::move(comparison)); }

void ComparingReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
    for (const auto& [name, counter] : run.counters) counters_[plainName(run)][name].push_back(counter.value);
  }
  ConsoleReporter::ReportRuns(runs);
}

bool ComparingReporter::has(const Figure& figure) const {
  const auto run = counters_.find(figure.benchmark);
  return run != counters_.end() && run->second.contains(figure.counter);
}

double ComparingReporter::median(const Figure& figure) const {
  std::vector<double> values = counters_.at(figure.benchmark).at(figure.counter);
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void ComparingReporter::printComparisons(std::ostream& out) const {
  out << "\nNAME | ours | beside | ratio | bound | holds\n";
  for (const Comparison& row : comparisons()) {
    if (!has(row.ours) || !has(row.beside)) continue;
    const double ours = median(row.ours);
    const double beside = median(row.beside);
    const double ratio = ours / beside;
    out << fmt::format("{} | {:.6g} | {:.6g} | {:.3f} | {:.3g} | {}\n", row.name, ours, beside, ratio,
                       row.bound, ratio <= row.bound ? "holds" : "over");
  }
}

}  // namespace karno::bench
