#include "platform/posix/processes/processes.h"

#include <unistd.h>

#include <cerrno>

#include "platform/posix/processes/child_registry.h"
#include "platform/posix/processes/process_information.h"
#include "platform/text/one_line.h"

namespace karno::platform {

std::int32_t PosixProcesses::currentProcessIdentifier() const { return ::getpid(); }

std::int32_t PosixProcesses::parentProcessIdentifier() const { return ::getppid(); }

std::vector<std::string> PosixProcesses::arguments() const { return programArguments(); }

std::string PosixProcesses::name(std::int32_t processIdentifier) const {
  // The kernel takes any bytes but a zero for a name.
  return processIdentifier < 1 ? std::string() : inOneLine(shortNameOfProcess(processIdentifier));
}

int PosixProcesses::terminate(std::int32_t processIdentifier) {
  // To kill() these are process groups, or every process of the user.
  if (processIdentifier < 1) return ESRCH;
  return ChildRegistry::instance().terminate(processIdentifier);
}

WaitResult PosixProcesses::waitForChild(std::int32_t processIdentifier) {
  // To waitpid() these are any child, whose end would be taken from its watcher.
  if (processIdentifier < 1) return {.result = -1, .error = ECHILD};
  return waitpidRegistered(processIdentifier);
}

}  // namespace karno::platform
