#include "machine_environment.h"

#include <stdlib.h>
#include <sys/resource.h>

namespace karno::test {

void enterMachine(const std::filesystem::path& machine) {
  const rlimit none{.rlim_cur = 0, .rlim_max = 0};
  ::setrlimit(RLIMIT_CORE, &none);
  ::setenv("HOME", (machine / "Users/user").c_str(), 1);
  ::setenv("KARNO_MACHINE_ROOT", machine.c_str(), 1);
}

}  // namespace karno::test
