#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "karnoctl/state/launcher_story.h"
#include "platform/date.h"
#include "platform/file_reading.h"

namespace karno::karnoctl {

// What the log tells of a process.
struct LoggedProcess {
  LauncherStory story;
  std::vector<std::string> lastLines;  // whole ones, in their order; a few
};

// Reads the launcher's log, the file before first, for what that process has logged since it began at
// `startDate`. Lines of an earlier process with its number do not count. Where there is no log, the story is
// empty. Of a file beyond all measure only the end is read.
LoggedProcess loggedProcess(const platform::FileReading& reading, std::int32_t processIdentifier,
                            const std::optional<platform::Date>& startDate);

}  // namespace karno::karnoctl
