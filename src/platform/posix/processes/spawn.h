#pragma once
#include <unistd.h>

#include <cstdint>

#include "platform/error.h"
#include "platform/tasks.h"

namespace karno::platform {

// posix_spawn() with what Tasks promises about descriptors and signals. The caller reaps the child, whose
// standard output is that descriptor.
Result<std::int32_t> spawn(const TaskLaunch& task, int standardOutput = STDOUT_FILENO);

// How a child ended, from what waitpid() says of it.
TaskEnd endFromWaitStatus(int status);

}  // namespace karno::platform
