#include "platform/linux/machine/console_log.h"

#include <unistd.h>

#include "platform/linux/machine/console_output.h"
#include "platform/never_destroyed.h"

namespace karno::platform {

void writeConsoleLine(std::string_view line) {
  static NeverDestroyed<ConsoleOutput> standardError(STDERR_FILENO);
  standardError->writeLine(line);
}

}  // namespace karno::platform
