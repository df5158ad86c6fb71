#include "platform/linux/machine/machine_commands.h"

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
constexpr const char* kCommandsInScripts[] = {"/bin/kill",         "/bin/ps",        "/bin/sleep",
                                              "/usr/bin/codesign", "/usr/bin/grep",  "/usr/bin/hdiutil",
                                              "/usr/bin/open",     "/usr/bin/xattr", "/usr/sbin/spctl"};
constexpr std::string_view kEndsOfWord = " \t\n;&|<>()$`\\\"'*?[";

std::optional<std::string> programOfMachine(std::string_view path) {
  std::string program = systemPath(path);
  if (::access(program.c_str(), X_OK) != 0) return std::nullopt;
  return program;
}

// As one word of a shell line, whatever is in it.
std::string shellQuoted(std::string_view word) {
  std::string text = "'";
  for (const char letter : word) text += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return text + "'";
}

// A function of bash may be called like a path, and then stands for the command there. In bash's POSIX mode,
// which it is in when it is called sh, it may not.
std::string scriptInMachine(const std::string& script) {
  std::string text = "set +o posix\n";
  for (const char* const command : kCommandsInScripts) {
    const std::optional<std::string> program = programOfMachine(command);
    if (program) text += std::string(command) + "() { " + shellQuoted(*program) + " \"$@\"; }\n";
  }
  return text + script;
}

}  // namespace

std::string shellOfMachine() { return programOfMachine(kShell).value_or(std::string(kShellWithoutMachine)); }

std::string lineForMachine(const std::string& line) {
  if (!line.starts_with('/')) return line;
  const std::size_t end = std::min(line.find_first_of(kEndsOfWord), line.size());
  const std::string path = line.substr(0, end);
  const std::optional<std::string> program = path == kShell ? shellOfMachine() : programOfMachine(path);
  return program ? shellQuoted(*program) + line.substr(end) : line;
}

TaskLaunch launchForMachine(const TaskLaunch& command) {
  TaskLaunch launch = command;
  launch.executablePath = programOfMachine(command.executablePath).value_or(command.executablePath);
  const bool isScript =
      command.executablePath == kShell && command.arguments.size() == 2 && command.arguments[0] == "-c";
  if (isScript) {
    launch.arguments[1] = scriptInMachine(command.arguments[1]);
    // A shell that is not bash would not understand this.
    if (launch.executablePath == kShell) launch.executablePath = "/bin/bash";
  }
  return launch;
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
