#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "platform/platform.h"
#include "workplace.h"

namespace {

using namespace std::string_view_literals;

constexpr int kExitNotMeasured = 1;
constexpr int kExitWrongUse = 64;
constexpr auto kEverything = "--benchmark_filter=."sv;

int complaintsStream = STDERR_FILENO;

void complain(const std::string& text) {
  const std::string line = "karno_bench: " + text + '\n';
  if (write(complaintsStream, line.data(), line.size()) < 0) std::_Exit(EXIT_FAILURE);
}

// Standard error goes to /dev/null: every log line is echoed there, and a terminal would be what is measured.
bool silenceStandardError() {
  complaintsStream = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  return complaintsStream >= 0 && null >= 0 && dup2(null, STDERR_FILENO) >= 0;
}

// Whether the option was there; Google Benchmark knows nothing of it.
bool takeOption(int& argc, char** argv, std::string_view option) {
  char** const end = std::remove_if(argv + 1, argv + argc, [&](const char* one) { return one == option; });
  const bool isThere = end != argv + argc;
  *end = nullptr;
  argc = static_cast<int>(end - argv);
  return isThere;
}

bool wantsAll(int argc, char** argv) {
  return std::none_of(argv + 1, argv + argc, [](std::string_view one) {
    return one.starts_with("--benchmark_filter=") && one != kEverything;
  });
}

int measureAll(bool areAllWanted) {
  karno::bench::Registration::makeAll();
  karno::bench::ComparingReporter reporter;
  if (benchmark::RunSpecifiedBenchmarks(&reporter) == 0) {
    complain("the filter names no benchmark");
    return kExitWrongUse;
  }
  karno::bench::isTinyLoad() ? reporter.printWork(std::cout) : reporter.printComparisons(std::cout);
  std::cout.flush();
  const std::vector<std::string> complaints = reporter.complaints(areAllWanted);
  for (const std::string& line : complaints) complain(line);
  return complaints.empty() ? EXIT_SUCCESS : kExitNotMeasured;
}

int run(int argc, char** argv, bool areAllWanted) {
  karno::bench::Workplace workplace;
  int status = kExitNotMeasured;
  try {
    karno::platform::install(karno::bench::countingPlatform(karno::platform::nativePlatform(argc, argv)));
    status = measureAll(areAllWanted);
  } catch (const std::exception& failure) {
    complain(failure.what());
  }
  workplace.remove();
  return status;
}

}  // namespace

// Takes Google Benchmark's options, and --tiny for a load that shows only that every benchmark runs. Ends
// with 0 when every row was measured, with 1 when one was not and with 64 when the command line is wrong.
int main(int argc, char** argv) {
  if (takeOption(argc, argv, "--tiny")) karno::bench::useTinyLoad();
  const bool areAllWanted = wantsAll(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return kExitWrongUse;
  if (!silenceStandardError()) return kExitNotMeasured;

  int status = kExitNotMeasured;
  try {
    status = run(argc, argv, areAllWanted);
  } catch (const std::exception& failure) {
    complain(failure.what());
  }
  // The log's writer never ends, so nothing is destroyed under it.
  std::_Exit(status);
}
