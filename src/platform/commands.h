#pragma once
#include <optional>
#include <string>

#include "platform/error.h"
#include "platform/tasks.h"

namespace karno::platform {

// How a command ended, and what it printed on its standard output.
struct CommandEnd {
  TaskEnd end;
  std::string standardOutput;
};

// The commands that every Mac has, named by the paths that they have there ("/usr/bin/hdiutil"), and scripts
// for
// "/bin/sh" with "-c" that name them so. Safe from any thread. A child inherits what a child of Tasks does.
class Commands {
 public:
  virtual ~Commands() = default;

  // Runs the command and waits, without a limit, until it has exited. The output is read meanwhile; one of
  // more than kCommandOutputBytesMax is an error (EFBIG).
  virtual Result<CommandEnd> run(const TaskLaunch& command) = 0;

  // Starts the command and leaves it to itself.
  virtual std::optional<Error> start(const TaskLaunch& command) = 0;
};

inline constexpr std::size_t kCommandOutputBytesMax = std::size_t{16} << 20U;

}  // namespace karno::platform
