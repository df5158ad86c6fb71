#include "platform/linux/console_log.h"

#include <unistd.h>

#include <string>

#include "platform/posix/whole_file.h"

namespace karno::platform {

void writeConsoleLine(std::string_view line) {
  std::string text(line);
  text += '\n';
  // One write() per line, so that lines of several threads and processes do not mix; a rest is only left over
  // when the receiver takes no more in one go. Errors have nowhere to be reported.
  writeAll(STDERR_FILENO, text);
}

}  // namespace karno::platform
