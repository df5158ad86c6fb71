#include "platform/posix/processes/system_differences.h"

#include <crt_externs.h>
#include <fcntl.h>
#include <libproc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <thread>
#include <utility>

namespace karno::platform {
namespace {

// proc_name() refuses a buffer that cannot hold the longest name; a longer one does no harm.
constexpr std::size_t kProcessNameBytesMax = 4096;

}  // namespace

std::optional<PathStatus> statusOfEntry(int folderDescriptor, const char* name) {
  struct stat status = {};
  if (::fstatat(folderDescriptor, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  const timespec& birth = status.st_birthtimespec;
  return PathStatus{
      .mode = status.st_mode,
      .creationDate = Date(std::chrono::seconds(birth.tv_sec) + std::chrono::nanoseconds(birth.tv_nsec))};
}

int inheritOnlyStandardStreams(posix_spawnattr_t&, short& flags, posix_spawn_file_actions_t& actions) {
  // The flag closes every descriptor that no file action names, the standard ones included.
  flags = static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (const int error = ::posix_spawn_file_actions_addinherit_np(&actions, descriptor)) return error;
  }
  return 0;
}

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

// A new thread takes nothing over from the quality of service of the one that starts it.
void startThreadOfNormalPriority(std::function<void()> body) { std::thread(std::move(body)).detach(); }

}  // namespace karno::platform
