#include "move/running_copy.h"

#include <fmt/format.h>

#include <algorithm>

#include "move/shell_scripts.h"
#include "move/system_age.h"
#include "platform/platform.h"

namespace karno {
namespace {

bool processListNames(const std::string& path) {
  const auto search = platform::host().commands.run(
      {.executablePath = "/bin/sh",
       .arguments = {"-c",
                     fmt::format("/bin/ps ax -o comm | /usr/bin/grep {}/ | /usr/bin/grep -v grep >/dev/null",
                                 shellQuotedString(path))}});
  return search && search.value().end.terminationStatus == 0;
}

}  // namespace

bool isApplicationAtPathRunning(const std::string& path) {
  const platform::FileManager& files = platform::host().fileManager;
  const std::string standardised = files.standardising(path);
  if (!isNewerThanMacOS10_5()) return processListNames(standardised);
  const auto running = platform::host().workspace.bundlePathsOfRunningApplications();
  return std::ranges::any_of(
      running, [&](const std::string& each) { return files.standardising(each) == standardised; });
}

}  // namespace karno
