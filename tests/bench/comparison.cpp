#include "comparison.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <ostream>
#include <utility>

#include "measurement.h"

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

std::string workText(const std::set<double>& work) {
  return work.empty() ? "-" : fmt::format("{}", fmt::join(work, ", "));
}

}  // namespace

void compare(Comparison comparison) { comparisons().push_back(std::move(comparison)); }

void ComparingReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    names_.insert(plainName(run));
    if (run.error_occurred) failures_.push_back(plainName(run) + ": " + run.error_message);
    if (run.error_occurred) continue;
    for (const auto& [name, counter] : run.counters) counters_[plainName(run)][name].push_back(counter.value);
  }
  ConsoleReporter::ReportRuns(runs);
}

bool ComparingReporter::has(const Figure& figure) const {
  const auto run = counters_.find(figure.benchmark);
  return run != counters_.end() && run->second.contains(figure.counter);
}

bool ComparingReporter::isMeasured(const Comparison& row) const { return has(row.ours) && has(row.beside); }

double ComparingReporter::median(const Figure& figure) const {
  return medianOf(counters_.at(figure.benchmark).at(figure.counter));
}

// What the repetitions did, which is one number when all is well.
std::set<double> ComparingReporter::work(const Figure& figure) const {
  if (figure.work.empty()) return {};
  const auto& counters = counters_.at(figure.benchmark);
  const auto counted = counters.find(figure.work);
  if (counted == counters.end()) return {0};
  return {counted->second.begin(), counted->second.end()};
}

void ComparingReporter::printComparisons(std::ostream& out) const {
  out << "\nNAME | ours | beside | ratio | bound | holds\n";
  for (const Comparison& row : comparisons()) {
    if (!isMeasured(row)) continue;
    const double ours = median(row.ours);
    const double beside = median(row.beside);
    const double ratio = ours / beside;
    out << fmt::format("{} | {:.6g} | {:.6g} | {:.3f} | {:.3g} | {}\n", row.name, ours, beside, ratio,
                       row.bound, ratio <= row.bound ? "holds" : "over");
  }
}

void ComparingReporter::printWork(std::ostream& out) const {
  out << "\nNAME | done | done beside\n";
  for (const Comparison& row : comparisons()) {
    if (!isMeasured(row)) continue;
    out << fmt::format("{} | {} | {}\n", row.name, workText(work(row.ours)), workText(work(row.beside)));
  }
}

std::string ComparingReporter::complaint(const Comparison& row) const {
  if (!isMeasured(row)) return "not measured: " + row.name;
  const std::set<double> ours = work(row.ours);
  const std::set<double> beside = work(row.beside);
  if (ours.contains(0) || beside.contains(0)) return "nothing was done: " + row.name;
  if (ours.size() > 1 || beside.size() > 1 || (!ours.empty() && !beside.empty() && ours != beside)) {
    return fmt::format("not the same was done ({} and {}): {}", workText(ours), workText(beside), row.name);
  }
  return {};
}

std::vector<std::string> ComparingReporter::complaints(bool areAllWanted) const {
  std::vector<std::string> lines = failures_;
  for (const Comparison& row : comparisons()) {
    if (!areAllWanted && (!hasRun(row.ours) || !hasRun(row.beside))) continue;
    if (const std::string line = complaint(row); !line.empty()) lines.push_back(line);
  }
  return lines;
}

}  // namespace karno::bench
