#pragma once
#include <cstdint>

#include "platform/error.h"
#include "platform/tasks.h"

namespace karno::platform {

// posix_spawn() with what Tasks promises about descriptors and signals. The caller reaps the child.
Result<std::int32_t> spawn(const TaskLaunch& task);

}  // namespace karno::platform
