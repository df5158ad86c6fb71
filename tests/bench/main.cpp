#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "comparison.h"
#include "platform/platform.h"
#include "workplace.h"

// Standard error goes to /dev/null: every log line is echoed there, and a terminal would be what is measured.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 64;

  karno::bench::Workplace workplace;
  karno::platform::install(karno::bench::countingPlatform(karno::platform::nativePlatform(argc, argv)));
  const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (null < 0 || dup2(null, STDERR_FILENO) < 0) return 70;

  karno::bench::ComparingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printComparisons(std::cout);
  std::cout.flush();
  workplace.remove();
  // The log's writer never ends, so nothing is destroyed under it.
  std::_Exit(EXIT_SUCCESS);
}
