#include "comparison.h"

#include <gmock/gmock.h>

#include <sstream>

#include "elements_are.h"

namespace karno::bench {
namespace {

using karno::test::ElementsAre;
using ::testing::IsEmpty;

using Repetition = benchmark::BenchmarkReporter::Run;

Repetition run(const std::string& benchmark, double seconds, double lines) {
  Repetition one;
  one.run_name.function_name = benchmark;
  one.counters["seconds"] = benchmark::Counter(seconds);
  one.counters["lines"] = benchmark::Counter(lines);
  return one;
}

Repetition failedRun(const std::string& benchmark, const std::string& message) {
  Repetition one;
  one.run_name.function_name = benchmark;
  one.error_occurred = true;
  one.error_message = message;
  return one;
}

// A table with one row, and what a run of its two benchmarks gave.
class ComparisonTable : public testing::Test {
 protected:
  ComparisonTable() {
    compare({.name = "lines, seconds, beside other",
             .ours = {"ours", "seconds", "lines"},
             .beside = {"other", "seconds", "lines"},
             .bound = 0.5});
  }

  void report(const std::vector<Repetition>& runs) {
    testing::internal::CaptureStdout();
    for (const Repetition& one : runs) reporter_.ReportRuns({one});
    testing::internal::GetCapturedStdout();
  }

  std::string rows() {
    std::ostringstream out;
    reporter_.printComparisons(out);
    return out.str();
  }

  ComparingReporter reporter_;
};

TEST_F(ComparisonTable, TakesTheMediansOfTheRepetitions) {
  report({run("ours", 9, 5), run("ours", 1, 5), run("ours", 2, 5), run("other", 4, 5)});

  EXPECT_EQ(rows(),
            "\nNAME | ours | beside | ratio | bound | holds\n"
            "lines, seconds, beside other | 2 | 4 | 0.500 | 0.5 | holds\n");
  EXPECT_THAT(reporter_.complaints(true), IsEmpty());
}

TEST_F(ComparisonTable, SaysWhenTheBoundIsNotHeld) {
  report({run("ours", 3, 5), run("other", 4, 5)});

  EXPECT_EQ(rows(),
            "\nNAME | ours | beside | ratio | bound | holds\n"
            "lines, seconds, beside other | 3 | 4 | 0.750 | 0.5 | over\n");
  EXPECT_THAT(reporter_.complaints(true), IsEmpty());
}

TEST_F(ComparisonTable, TellsWhatWasDone) {
  report({run("ours", 3, 5), run("other", 4, 5)});
  std::ostringstream out;

  reporter_.printWork(out);

  EXPECT_EQ(out.str(), "\nNAME | done | done beside\nlines, seconds, beside other | 5 | 5\n");
}

TEST_F(ComparisonTable, ComplainsOfSidesThatDidNotDoTheSame) {
  report({run("ours", 3, 4), run("other", 4, 5)});

  EXPECT_THAT(reporter_.complaints(true),
              ElementsAre("not the same was done (4 and 5): lines, seconds, beside other"));
}

TEST_F(ComparisonTable, ComplainsOfARepetitionThatDidLess) {
  report({run("ours", 3, 5), run("ours", 3, 4), run("other", 4, 5)});

  EXPECT_THAT(reporter_.complaints(true),
              ElementsAre("not the same was done (4, 5 and 5): lines, seconds, beside other"));
}

TEST_F(ComparisonTable, ComplainsOfBenchmarksThatDidNothing) {
  report({run("ours", 3, 0), run("other", 4, 0)});

  EXPECT_THAT(reporter_.complaints(true), ElementsAre("nothing was done: lines, seconds, beside other"));
}

TEST_F(ComparisonTable, ComplainsOfABenchmarkThatFailedAndOfItsRow) {
  report({failedRun("ours", "no child"), run("other", 4, 5)});

  EXPECT_THAT(reporter_.complaints(false),
              ElementsAre("ours: no child", "not measured: lines, seconds, beside other"));
}

TEST_F(ComparisonTable, ComplainsOfABenchmarkThatFailedOnlyOnce) {
  report({failedRun("ours", "no child"), run("ours", 3, 5), run("other", 4, 5)});

  EXPECT_THAT(reporter_.complaints(false), ElementsAre("ours: no child"));
}

TEST_F(ComparisonTable, MissesARowOnlyWhenItsBenchmarksWereToRun) {
  report({run("ours", 3, 5)});

  EXPECT_THAT(reporter_.complaints(false), IsEmpty());
  EXPECT_THAT(reporter_.complaints(true), ElementsAre("not measured: lines, seconds, beside other"));
}

}  // namespace
}  // namespace karno::bench
