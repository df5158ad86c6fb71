#pragma once
#include <unistd.h>

#include <cstdint>

#include "platform/error.h"
#include "platform/tasks.h"

namespace karno::platform {

// posix_spawn() with what Tasks promises about descriptors and signals. The caller reaps the child. Another
// descriptor may take the place of the inherited standard output.
Result<std::int32_t> spawn(const TaskLaunch& task, int standardOutput = STDOUT_FILENO);

}  // namespace karno::platform
