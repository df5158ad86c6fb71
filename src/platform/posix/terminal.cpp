#include "platform/terminal.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string_view>

namespace karno::platform {
namespace {

std::string_view environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

}  // namespace

bool standardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

// An empty NO_COLOR counts as none, see no-color.org.
bool standardOutputWantsColours() {
  return standardOutputIsTerminal() && environmentVariable("NO_COLOR").empty() &&
         environmentVariable("TERM") != "dumb";
}

void endWithTheReaderOfTheOutput() { ::signal(SIGPIPE, SIG_DFL); }

}  // namespace karno::platform
