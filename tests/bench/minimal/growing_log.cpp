// Logs as many lines as its first argument says, no faster than they reach the file, and writes to the file
// that its second argument names by how many bytes its resident memory has grown and how many lines there
// are.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "log/karno_log.h"
#include "platform/platform.h"
#include "workplace.h"

namespace {

using karno::bench::fileCounts;

constexpr std::uint64_t kFirstLines = 1'000;
constexpr std::uint64_t kWaitingLinesMax = 10'000;  // never none, so the writer does not pause either
constexpr auto kLook = std::chrono::milliseconds(1);

std::uint64_t logged = 0;

// A rotation costs one line.
std::uint64_t done() { return fileCounts().linesWritten.load() + fileCounts().rotations.load(); }

void waitUntilFewerAreLeftThan(std::uint64_t lines) {
  while (logged - done() >= lines) std::this_thread::sleep_for(kLook);
}

void logLines(std::uint64_t count) {
  karno::KarnoLog& log = karno::KarnoLog::manager();
  for (std::uint64_t line = 0; line < count; ++line) {
    log.logInfo("Notify[LISTEN] Received 'check-for-updates'");
    ++logged;
    if (logged % kFirstLines == 0) waitUntilFewerAreLeftThan(kWaitingLinesMax);
  }
  waitUntilFewerAreLeftThan(1);
}

std::int64_t residentBytes() {
  std::ifstream memory("/proc/self/statm");
  std::int64_t size = 0;
  std::int64_t resident = 0;
  memory >> size >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 64;
  const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (null < 0 || dup2(null, STDERR_FILENO) < 0) return 70;
  karno::platform::install(karno::bench::countingPlatform(karno::platform::nativePlatform(argc, argv)));
  logLines(kFirstLines);
  const std::int64_t before = residentBytes();
  const std::uint64_t doneBefore = done();

  logLines(std::stoull(argv[1]));
  const std::int64_t growth = residentBytes() - before;
  std::ofstream(argv[2]) << growth << ' ' << done() - doneBefore << '\n';
  // The log's writer never ends, so nothing is destroyed under it.
  std::_Exit(EXIT_SUCCESS);
}
