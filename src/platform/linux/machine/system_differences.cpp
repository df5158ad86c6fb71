#include "platform/posix/processes/system_differences.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/posix/files/whole_file.h"

namespace karno::platform {
namespace {

constexpr int kFirstOtherDescriptor = 3;
constexpr unsigned kWantedStatus = STATX_TYPE | STATX_CTIME | STATX_BTIME;

Date dateOf(const struct statx_timestamp& time) {
  return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

std::string contentOf(const std::string& path) {
  Result<WholeFile> file = readWholeFile(path);
  return file ? std::move(file.value().bytes) : std::string();
}

}  // namespace

std::optional<PathStatus> statusOfEntry(int folderDescriptor, const char* name) {
  struct statx status = {};
  if (::statx(folderDescriptor, name, AT_SYMLINK_NOFOLLOW, kWantedStatus, &status) != 0) return std::nullopt;
  const bool hasBirthTime = (status.stx_mask & STATX_BTIME) != 0;
  return PathStatus{.mode = status.stx_mode,
                    .creationDate = dateOf(hasBirthTime ? status.stx_btime : status.stx_ctime)};
}

int inheritOnlyStandardStreams(posix_spawnattr_t&, short&, posix_spawn_file_actions_t& actions) {
  return ::posix_spawn_file_actions_addclosefrom_np(&actions, kFirstOtherDescriptor);  // glibc 2.34
}

std::string shortNameOfProcess(std::int32_t processIdentifier) {
  std::string name = contentOf("/proc/" + std::to_string(processIdentifier) + "/comm");
  if (!name.empty() && name.back() == '\n') name.pop_back();
  return name;
}

std::vector<std::string> programArguments() {
  const std::string line = contentOf("/proc/self/cmdline");
  std::vector<std::string> arguments;
  for (std::size_t begin = 0; begin < line.size();) {
    const std::size_t end = std::min(line.find('\0', begin), line.size());
    arguments.push_back(line.substr(begin, end - begin));
    begin = end + 1;
  }
  return arguments;
}

std::string programPath() {
  std::error_code code;
  return std::filesystem::read_symlink("/proc/self/exe", code).string();
}

}  // namespace karno::platform
