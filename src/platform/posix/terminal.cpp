#include "platform/terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string>

#include "platform/posix/environment.h"

namespace karno::platform {

bool standardOutputIsOpen() { return ::fcntl(STDOUT_FILENO, F_GETFD) != -1; }

bool standardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

// An empty NO_COLOR counts as none, see no-color.org.
bool standardOutputWantsColours() {
  return standardOutputIsTerminal() && environmentVariable("NO_COLOR").empty() &&
         environmentVariable("TERM") != "dumb";
}

// The first of these that is set and not empty decides, see setlocale(3).
bool localeIsUTF8() {
  for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const std::string locale = environmentVariable(variable);
    if (locale.empty()) continue;
    return std::ranges::any_of(std::array{"UTF-8", "utf-8", "UTF8", "utf8"},
                               [&](const char* name) { return locale.find(name) != std::string::npos; });
  }
  return false;
}

void endWithTheReaderOfTheOutput() { ::signal(SIGPIPE, SIG_DFL); }

}  // namespace karno::platform
