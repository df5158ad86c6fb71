#include "platform/linux/processes/process_list.h"

#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <system_error>
#include <thread>

#include "platform/linux/machine/machine_root.h"
#include "platform/posix/files/whole_file.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kRootVariable = "KARNO_MACHINE_ROOT=";
constexpr std::string_view kDeletedSuffix = " (deleted)";  // as the kernel writes it, see proc(5)

std::optional<std::int32_t> processIdentifierOf(const fs::path& entry) {
  const std::string name = entry.filename().string();
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
  return number;
}

bool belongsToThisUser(const fs::path& process) {
  struct stat status = {};
  return ::stat(process.c_str(), &status) == 0 && status.st_uid == ::geteuid();
}

std::string contentOf(const fs::path& file) {
  const Result<WholeFile> content = readWholeFile(file.string());
  return content ? content.value().bytes : std::string();
}

// Absent for kernel threads, zombies and a process that has gone meanwhile. An executable that was replaced,
// as an update does, keeps its place.
std::optional<std::string> executableOf(const fs::path& process) {
  std::error_code error;
  std::string path = fs::read_symlink(process / "exe", error).string();
  if (error) return std::nullopt;
  if (path.ends_with(kDeletedSuffix) && !fs::exists(path, error)) {
    path.resize(path.size() - kDeletedSuffix.size());
  }
  return path;
}

struct Status {
  std::int32_t parent = 0;
  std::int64_t ticksFromBootToStart = 0;
  // An address, another one at each loading; 0 until the kernel has loaded the program.
  std::uint64_t codeBegin = 0;
};

// The name in brackets may hold blanks and brackets itself. The parent is the 4th field, the start the 22nd,
// the code's begin the 26th.
std::optional<Status> statusOf(const fs::path& process) {
  const std::string text = contentOf(process / "stat");
  const std::size_t nameEnd = text.rfind(')');
  if (nameEnd == std::string::npos) return std::nullopt;

  std::istringstream fields(text.substr(nameEnd + 1));
  Status status;
  std::string skipped;
  fields >> skipped >> status.parent;
  for (int field = 5; field < 22; ++field) fields >> skipped;
  fields >> status.ticksFromBootToStart;
  for (int field = 23; field < 26; ++field) fields >> skipped;
  if (!(fields >> status.codeBegin)) return std::nullopt;
  return status;
}

// The kernel names a program that it loads before it lays out the environment: an empty one counts once the
// program is known to have been loaded all the time. At most some 100 ms.
std::string environmentOf(const fs::path& process) {
  std::optional<Status> before;
  for (int look = 0; look < 100; ++look) {
    std::string environment = contentOf(process / "environ");
    if (!environment.empty()) return environment;
    const std::optional<Status> after = statusOf(process);
    if (!after || (before && before->codeBegin != 0 && before->codeBegin == after->codeBegin)) break;
    before = after;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return {};
}

// The entries of an environment end with a zero byte each.
std::string machineRootOf(const fs::path& process) {
  const std::string environment = environmentOf(process);
  for (std::size_t begin = 0; begin < environment.size();) {
    const std::size_t end = std::min(environment.find('\0', begin), environment.size());
    const std::string_view entry = std::string_view(environment).substr(begin, end - begin);
    if (entry.starts_with(kRootVariable)) {
      return machineRootNamed(entry.substr(kRootVariable.size()));
    }
    begin = end + 1;
  }
  return machineRootNamed({});
}

Date timeOf(clockid_t clock) {
  struct timespec time = {};
  ::clock_gettime(clock, &time);
  return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

Date startDateOf(const Status& status) {
  static const std::int64_t ticksPerSecond = ::sysconf(_SC_CLK_TCK);
  const auto bootToStart =
      std::chrono::nanoseconds(status.ticksFromBootToStart * (1'000'000'000 / ticksPerSecond));
  const auto bootToNow = timeOf(CLOCK_BOOTTIME).time_since_epoch();
  return timeOf(CLOCK_REALTIME) - (bootToNow - bootToStart);
}

}  // namespace

std::vector<RunningProcess> LinuxProcessList::runningProcesses() const {
  const std::string root = machineRoot();
  std::vector<RunningProcess> found;
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const std::optional<std::int32_t> number = processIdentifierOf(entry->path());
    if (!number || !belongsToThisUser(entry->path())) continue;
    const std::optional<std::string> executable = executableOf(entry->path());
    const std::optional<Status> status = statusOf(entry->path());
    if (!executable || !status || machineRootOf(entry->path()) != root) continue;
    found.push_back({.processIdentifier = *number,
                     .parentProcessIdentifier = status->parent,
                     .executablePath = *executable,
                     .startDate = startDateOf(*status)});
  }
  std::ranges::sort(found, {}, &RunningProcess::processIdentifier);
  return found;
}

}  // namespace karno::platform
