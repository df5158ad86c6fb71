#include "platform/posix/processes/process_information.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/posix/files/whole_file.h"

namespace karno::platform {
namespace {

std::string contentOf(const std::string& path) {
  Result<WholeFile> file = readWholeFile(path);
  return file ? std::move(file.value().bytes) : std::string();
}

}  // namespace

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
