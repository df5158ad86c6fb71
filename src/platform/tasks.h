#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/error.h"

namespace karno::platform {

enum class TerminationReason : long { Exit = 1, UncaughtSignal = 2 };

// How a child ended: the exit status, or the number of the signal that ended it.
struct TaskEnd {
  int terminationStatus = 0;
  TerminationReason terminationReason = TerminationReason::Exit;
};

struct TaskLaunch {
  std::string executablePath;
  std::vector<std::string> arguments;  // without the program's own name
};

// Child processes. Safe from any thread.
class Tasks {
 public:
  using TerminationHandler = std::function<void(const TaskEnd&)>;

  virtual ~Tasks() = default;

  // Creates and starts a child in one step and returns its process identifier. The child inherits the
  // environment, the working folder and the three standard streams, and no other descriptor; its signal
  // mask is empty and every signal has its default action. It leads a process group of its own, so that what
  // a terminal or the system does to the launcher's group does not reach it. The handler runs once, on a
  // thread of the platform's choosing, when the child has ended; the child is reaped here, or by a waitpid()
  // of Processes that was pending when it ended. An error means that no child was made.
  virtual Result<std::int32_t> launch(const TaskLaunch& task, TerminationHandler onTermination) = 0;
};

}  // namespace karno::platform
