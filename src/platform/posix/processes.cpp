#include "platform/posix/processes.h"

#include <unistd.h>

#include "platform/posix/system_differences.h"

namespace karno::platform {

std::int32_t PosixProcesses::currentProcessIdentifier() const { return ::getpid(); }

std::int32_t PosixProcesses::parentProcessIdentifier() const { return ::getppid(); }

std::vector<std::string> PosixProcesses::arguments() const { return programArguments(); }

std::string PosixProcesses::name(std::int32_t processIdentifier) const {
  return processIdentifier < 1 ? std::string() : shortNameOfProcess(processIdentifier);
}

}  // namespace karno::platform
