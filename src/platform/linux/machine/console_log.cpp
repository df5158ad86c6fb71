#include "platform/linux/machine/console_log.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>

#include "platform/posix/files/whole_file.h"

namespace karno::platform {

namespace {

constexpr std::size_t kUsualLineBytesMax = 1024;

}  // namespace

// One write() per line, so that lines of several threads and processes do not mix; a rest is only left over
// when the receiver takes no more in one go. Errors have nowhere to be reported. Every log line comes through
// here, so the usual one is put together without an allocation.
void writeConsoleLine(std::string_view line) {
  if (line.size() < kUsualLineBytesMax) {
    std::array<char, kUsualLineBytesMax> text;
    *std::copy(line.begin(), line.end(), text.begin()) = '\n';
    writeAll(STDERR_FILENO, std::string_view(text.data(), line.size() + 1));
    return;
  }
  writeAll(STDERR_FILENO, std::string(line) + '\n');
}

}  // namespace karno::platform
