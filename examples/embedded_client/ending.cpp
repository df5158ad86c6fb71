#include "embedded_client/ending.h"

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>

namespace karno::client {

void endWithStatus(int status) { std::_Exit(status); }

void crash() {
  const rlimit none{.rlim_cur = 0, .rlim_max = 0};
  ::setrlimit(RLIMIT_CORE, &none);
  std::signal(SIGABRT, SIG_DFL);
  std::abort();
}

void ignoreTerminationSignal() { std::signal(SIGTERM, SIG_IGN); }

}  // namespace karno::client
