// Stands for the embedded application when its ends are tested: does nothing until a signal ends it or its
// launcher is gone. SIGUSR1 sent with a value makes it exit with that value as its status; it is blocked once
// that works.
#include <signal.h>
#include <unistd.h>

#include <ctime>

#include "launcher_argument.h"

int main(int argc, char** argv) {
  sigset_t wanted;
  sigemptyset(&wanted);
  sigaddset(&wanted, SIGUSR1);
  const pid_t launcher = karno::test::launcherOf(argc, argv);
  sigprocmask(SIG_BLOCK, &wanted, nullptr);

  constexpr timespec kLookInterval{.tv_sec = 0, .tv_nsec = 20'000'000};
  while (getppid() == launcher) {
    siginfo_t received{};
    if (sigtimedwait(&wanted, &received, &kLookInterval) == SIGUSR1) return received.si_value.sival_int;
  }
  return 0;
}
