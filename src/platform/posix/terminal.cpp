#include "platform/terminal.h"

#include <unistd.h>

#include <csignal>

#include "platform/posix/environment.h"

namespace karno::platform {

bool standardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

// An empty NO_COLOR counts as none, see no-color.org.
bool standardOutputWantsColours() {
  return standardOutputIsTerminal() && environmentVariable("NO_COLOR").empty() &&
         environmentVariable("TERM") != "dumb";
}

void endWithTheReaderOfTheOutput() { ::signal(SIGPIPE, SIG_DFL); }

}  // namespace karno::platform
