#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>

#include "log/karno_log.h"
#include "platform/platform.h"
#include "util/string_utils.h"

namespace karno {
namespace {

constexpr double kAgeMaxSeconds = 1'209'600;  // 14 days; a file of exactly this age is kept
constexpr std::string_view kOldLogPrefix = "it.vantul.Karno";

}  // namespace

// Log files of an earlier logging scheme lie in the same folder, named after the bundle identifier.
void KarnoLog::cleanupOldLumberjackLogs() {
  platform::Files& files = platform::host().files;
  files.enumerate(logDirectory_, [&](const platform::DirectoryEntry& entry) {
    const std::string& path = entry.relativePath;
    if (entry.type == platform::FileType::Directory) {
      logDebug(fmt::format("KarnoLog[Clean] Skipping directory: '{}'", path));
      return false;
    }
    if (!path.starts_with(kOldLogPrefix)) {
      logDebug(fmt::format("KarnoLog[Clean] Skipping non-lumberjack file: '{}'", path));
      return false;
    }
    const platform::Date now = platform::host().clock.now();
    const double ageSeconds = platform::secondsBetween(entry.creationDate.value_or(now), now);
    if (ageSeconds <= kAgeMaxSeconds) {
      logDebug(fmt::format("KarnoLog[Clean] Skipping recent lumberjack log: '{}'", path));
      return false;
    }
    logMessage(fmt::format("KarnoLog[Clean] Removing old lumberjack log: '{}' (age: {} seconds)", path,
                           static_cast<std::int64_t>(ageSeconds)),
               "STARTUP");
    static_cast<void>(files.remove(u_stringByAppendingPathComponents(logDirectory_, {path})));
    return false;
  });
}

}  // namespace karno
