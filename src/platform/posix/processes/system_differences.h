#pragma once
#include <spawn.h>
#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/date.h"
#include "platform/posix/console_line.h"

namespace karno::platform {

struct PathStatus {
  mode_t mode = 0;
  Date creationDate{};
};

std::optional<PathStatus> statusOfEntry(int folderDescriptor, const char* name);

int inheritOnlyStandardStreams(posix_spawnattr_t& attributes, short& flags,
                               posix_spawn_file_actions_t& actions);

std::string shortNameOfProcess(std::int32_t processIdentifier);

std::vector<std::string> programArguments();

std::string programPath();

void startThreadOfNormalPriority(std::function<void()> body);

}  // namespace karno::platform
