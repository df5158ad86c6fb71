#include "platform/posix/processes/spawn_descriptors.h"

namespace karno::platform {
namespace {

constexpr int kFirstOtherDescriptor = 3;

}  // namespace

int inheritOnlyStandardStreams(posix_spawnattr_t&, short&, posix_spawn_file_actions_t& actions) {
  return ::posix_spawn_file_actions_addclosefrom_np(&actions, kFirstOtherDescriptor);  // glibc 2.34
}

}  // namespace karno::platform
