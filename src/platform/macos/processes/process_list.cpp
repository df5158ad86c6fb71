#include "platform/macos/processes/process_list.h"

#include <libproc.h>
#include <sys/proc_info.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <string>

namespace karno::platform {
namespace {

// Processes may be started between the two calls that learn how many there are and which.
constexpr std::size_t kRoomForNewProcesses = 64;

std::vector<std::int32_t> identifiersOfThisUser() {
  const int bytes = ::proc_listpids(PROC_UID_ONLY, ::geteuid(), nullptr, 0);
  if (bytes <= 0) return {};

  std::vector<std::int32_t> identifiers(static_cast<std::size_t>(bytes) / sizeof(std::int32_t) +
                                        kRoomForNewProcesses);
  const int filled = ::proc_listpids(PROC_UID_ONLY, ::geteuid(), identifiers.data(),
                                     static_cast<int>(identifiers.size() * sizeof(std::int32_t)));
  identifiers.resize(filled > 0 ? static_cast<std::size_t>(filled) / sizeof(std::int32_t) : 0);
  return identifiers;
}

std::string executableOf(std::int32_t processIdentifier) {
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path = {};
  const int length = ::proc_pidpath(processIdentifier, path.data(), static_cast<std::uint32_t>(path.size()));
  return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

std::optional<RunningProcess> processOf(std::int32_t processIdentifier) {
  struct proc_bsdinfo information = {};
  const int size = static_cast<int>(sizeof(information));
  if (::proc_pidinfo(processIdentifier, PROC_PIDTBSDINFO, 0, &information, size) != size) return std::nullopt;
  std::string executable = executableOf(processIdentifier);
  if (executable.empty()) return std::nullopt;

  return RunningProcess{.processIdentifier = processIdentifier,
                        .parentProcessIdentifier = static_cast<std::int32_t>(information.pbi_ppid),
                        .executablePath = std::move(executable),
                        .startDate = Date(std::chrono::seconds(information.pbi_start_tvsec) +
                                          std::chrono::microseconds(information.pbi_start_tvusec))};
}

}  // namespace

std::vector<RunningProcess> MacProcessList::runningProcesses() const {
  std::vector<RunningProcess> found;
  for (const std::int32_t identifier : identifiersOfThisUser()) {
    if (identifier <= 0) continue;
    if (auto process = processOf(identifier)) found.push_back(std::move(*process));
  }
  std::ranges::sort(found, {}, &RunningProcess::processIdentifier);
  return found;
}

}  // namespace karno::platform
