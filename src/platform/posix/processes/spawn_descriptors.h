#pragma once
#include <spawn.h>

namespace karno::platform {

// Lets the child have the three standard streams and no other descriptor of ours, whoever opened it. Answers
// 0 or an errno.
int inheritOnlyStandardStreams(posix_spawnattr_t& attributes, short& flags,
                               posix_spawn_file_actions_t& actions);

}  // namespace karno::platform
