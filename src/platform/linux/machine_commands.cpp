#include "platform/linux/machine_commands.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "platform/system_path.h"

extern "C" char** environ;

namespace karno::platform {
namespace {

constexpr std::string_view kShell = "/bin/sh";
constexpr std::string_view kShellWithoutMachine = "bash";
constexpr std::string_view kSearchPathName = "PATH=";
constexpr std::string_view kSearchPathOfNobody = "/usr/local/bin:/usr/bin:/bin";
constexpr std::string_view kEndsOfWord = " \t\n;&|<>()$`\\\"'*?[";

std::optional<std::string> programOfMachine(std::string_view path) {
  std::string program = systemPath(path);
  if (::access(program.c_str(), X_OK) != 0) return std::nullopt;
  return program;
}

// As one word of a shell line, whatever is in it.
std::string quoted(std::string_view word) {
  std::string text = "'";
  for (const char letter : word) text += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return text + "'";
}

}  // namespace

std::string shellOfMachine() { return programOfMachine(kShell).value_or(std::string(kShellWithoutMachine)); }

std::string lineForMachine(const std::string& line) {
  if (!line.starts_with('/')) return line;
  const std::size_t end = std::min(line.find_first_of(kEndsOfWord), line.size());
  const std::string path = line.substr(0, end);
  const std::optional<std::string> program = path == kShell ? shellOfMachine() : programOfMachine(path);
  return program ? quoted(*program) + line.substr(end) : line;
}

std::vector<std::string> environmentForMachine() {
  std::vector<std::string> variables;
  std::string_view searchPath = kSearchPathOfNobody;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (text.starts_with(kSearchPathName)) {
      searchPath = text.substr(kSearchPathName.size());
    } else {
      variables.emplace_back(text);
    }
  }
  variables.push_back(std::string(kSearchPathName) + systemPath("/usr/bin:").append(searchPath));
  return variables;
}

}  // namespace karno::platform
