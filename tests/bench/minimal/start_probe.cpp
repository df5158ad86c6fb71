// Stands for the embedded application when a start is measured: writes the moment it runs to the file that
// KARNO_BENCH_PROBE names, then waits for its parent's end if KARNO_BENCH_WAIT is set.
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>

int main() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const char* const file = std::getenv("KARNO_BENCH_PROBE");
  if (file == nullptr) return 64;
  char text[64];
  const int length = std::snprintf(text, sizeof text, "%lld\n", 1'000'000'000LL * now.tv_sec + now.tv_nsec);
  const int descriptor = open(file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (descriptor < 0 || write(descriptor, text, static_cast<size_t>(length)) != length) return 74;
  close(descriptor);
  if (std::getenv("KARNO_BENCH_WAIT") == nullptr) return 0;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  while (true) pause();
}
