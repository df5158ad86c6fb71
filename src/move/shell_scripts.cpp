#include "move/shell_scripts.h"

#include <fmt/format.h>

#include "move/system_age.h"
#include "platform/platform.h"

namespace karno {
namespace {

// What went wrong is on the console log of whoever could not start it; nothing waits for a script.
void startScript(const std::string& script) {
  const auto error =
      platform::host().commands.start({.executablePath = "/bin/sh", .arguments = {"-c", script}});
  if (error) platform::host().consoleLog.log(error->localizedDescription());
}

}  // namespace

std::string shellQuotedString(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

void relaunchFromPath(const std::string& destination) {
  const std::string quoted = shellQuotedString(destination);
  const std::string quarantineCommand =
      isNewerThanMacOS10_5() ? fmt::format("/usr/bin/xattr -d -r com.apple.quarantine {}", quoted)
                             : fmt::format("/usr/bin/xattr -d com.apple.quarantine {}", quoted);
  startScript(
      fmt::format("(while /bin/kill -0 {} >&/dev/null; do /bin/sleep 0.1; done; {}; /usr/bin/open {}) &",
                  platform::host().processes.currentProcessIdentifier(), quarantineCommand, quoted));
}

void detachDiskImageLater(const std::string& device) {
  startScript(fmt::format("(/bin/sleep 5 && /usr/bin/hdiutil detach {}) &", shellQuotedString(device)));
}

}  // namespace karno
