// Stands for the embedded application in a burst of restarts: runs until the file that KARNO_CLIENT_LEAVE
// names exists, or its launcher is gone. One that is started when the file is there ends at once.
#include <unistd.h>

#include <cstdlib>
#include <ctime>

#include "launcher_argument.h"

int main(int argc, char** argv) {
  const char* const leave = std::getenv("KARNO_CLIENT_LEAVE");
  const pid_t launcher = karno::test::launcherOf(argc, argv);
  constexpr timespec kLookInterval{.tv_sec = 0, .tv_nsec = 20'000'000};
  while (getppid() == launcher && (leave == nullptr || access(leave, F_OK) != 0)) {
    nanosleep(&kLookInterval, nullptr);
  }
  return 0;
}
