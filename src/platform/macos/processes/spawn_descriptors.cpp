#include "platform/posix/processes/spawn_descriptors.h"

#include <unistd.h>

namespace karno::platform {

int inheritOnlyStandardStreams(posix_spawnattr_t&, short& flags, posix_spawn_file_actions_t& actions) {
  // The flag closes every descriptor that no file action names, the standard ones included.
  flags = static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (const int error = ::posix_spawn_file_actions_addinherit_np(&actions, descriptor)) return error;
  }
  return 0;
}

}  // namespace karno::platform
