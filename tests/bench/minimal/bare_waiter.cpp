// The least program that learns of a child's end: starts its first argument, says "Launched (pid: N)", waits,
// and says "Child terminated".
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc < 2) return 64;
  pid_t child = 0;
  char* const arguments[] = {argv[1], nullptr};
  if (posix_spawn(&child, argv[1], nullptr, nullptr, arguments, environ) != 0) return 71;
  dprintf(STDERR_FILENO, "Launched (pid: %d)\n", child);

  siginfo_t end{};
  if (waitid(P_PID, static_cast<id_t>(child), &end, WEXITED) != 0) return 70;
  dprintf(STDERR_FILENO, "Child terminated (status:%d, reason:%d)\n", end.si_status, end.si_code);
}
