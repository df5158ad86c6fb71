#pragma once
#include <sys/types.h>

#include <optional>

#include "platform/date.h"

namespace karno::platform {

struct PathStatus {
  mode_t mode = 0;
  Date creationDate{};  // of the last change where the file system keeps none
};

// Of the entry itself, also where it is a link. Any thread.
std::optional<PathStatus> statusOfEntry(int folderDescriptor, const char* name);

}  // namespace karno::platform
