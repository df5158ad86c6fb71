#pragma once
#include <functional>

#include "platform/commands.h"

namespace karno::platform {

// Children by posix_spawn(). `place` says where on this machine a command lies; without one it lies where its
// path says.
class PosixCommands final : public Commands {
 public:
  using Placing = std::function<TaskLaunch(const TaskLaunch&)>;

  explicit PosixCommands(
      Tasks& tasks, Placing place = [](const TaskLaunch& command) { return command; })
      : tasks_(tasks), place_(std::move(place)) {}

  Result<CommandEnd> run(const TaskLaunch& command) override;
  std::optional<Error> start(const TaskLaunch& command) override;

 private:
  Tasks& tasks_;
  const Placing place_;
};

}  // namespace karno::platform
