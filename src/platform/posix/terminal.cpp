#include "platform/terminal.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string_view>

namespace karno::platform {
namespace {

std::string_view variableOrNothing(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

}  // namespace

bool standardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

// An empty NO_COLOR counts as none, see no-color.org.
bool standardOutputWantsColours() {
  return standardOutputIsTerminal() && variableOrNothing("NO_COLOR").empty() &&
         variableOrNothing("TERM") != "dumb";
}

void endWithTheReaderOfTheOutput() { ::signal(SIGPIPE, SIG_DFL); }

}  // namespace karno::platform
