#include "client_processes.h"

#include <signal.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <system_error>

namespace karno::test {
namespace {

namespace fs = std::filesystem;

// What could be read: a process can be gone between the opening of its file and the reading, which is then an
// error of its own.
std::string contentsOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

bool isNumber(const std::string& name) {
  return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// State and parent are fields 3 and 4 of /proc/PID/stat, counted after the command name's closing bracket.
ClientProcess processAt(const fs::path& folder) {
  const std::string text = contentsOf(folder / "stat");
  const std::size_t bracket = text.rfind(')');
  if (bracket == std::string::npos) return {};
  std::istringstream fields(text.substr(bracket + 1));
  char state = 0;
  ClientProcess process;
  fields >> state >> process.parent;
  process.identifier = std::stoi(folder.filename().string());
  process.isZombie = state == 'Z';
  return process;
}

}  // namespace

std::vector<ClientProcess> clientProcesses(const fs::path& client, pid_t launcher) {
  std::vector<ClientProcess> found;
  std::error_code ignored;
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const fs::path folder = entry->path();
    if (!isNumber(folder.filename().string())) continue;
    const ClientProcess process = processAt(folder);
    const bool isClient = fs::read_symlink(folder / "exe", ignored) == client;
    if (isClient || (process.isZombie && process.parent == launcher)) found.push_back(process);
  }
  return found;
}

bool blocksUserSignal(pid_t process) {
  const std::string status = contentsOf("/proc/" + std::to_string(process) + "/status");
  const std::size_t place = status.find("SigBlk:\t");
  if (place == std::string::npos) return false;
  const std::uint64_t blocked = std::stoull(status.substr(place + 8), nullptr, 16);
  return (blocked >> (SIGUSR1 - 1) & 1U) != 0;
}

}  // namespace karno::test
