#include "platform/posix/processes/process_information.h"

#include <crt_externs.h>
#include <libproc.h>
#include <unistd.h>

#include <array>
#include <cstddef>

namespace karno::platform {
namespace {

// proc_name() refuses a buffer that cannot hold the longest name; a longer one does no harm.
constexpr std::size_t kProcessNameBytesMax = 4096;

}  // namespace

std::string shortNameOfProcess(std::int32_t processIdentifier) {
  std::array<char, kProcessNameBytesMax> name = {};
  const int length = ::proc_name(processIdentifier, name.data(), static_cast<std::uint32_t>(name.size()));
  return length > 0 ? std::string(name.data(), static_cast<std::size_t>(length)) : std::string();
}

std::vector<std::string> programArguments() {
  char** const first = *::_NSGetArgv();
  return std::vector<std::string>(first, first + *::_NSGetArgc());
}

std::string programPath() {
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path = {};
  const int length = ::proc_pidpath(::getpid(), path.data(), static_cast<std::uint32_t>(path.size()));
  return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

}  // namespace karno::platform
