#include <fmt/format.h>

#include "ipc/karno_process_utils.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "settings/karno_settings.h"
#include "util/string_utils.h"

namespace karno {

void KarnoLog::logStartupMessages() {
  constexpr std::string_view kLevel = "STARTUP";
  const auto version =
      platform::host().bundles.mainBundle().objectForInfoDictionaryKey("CFBundleShortVersionString");
  const std::int32_t parent = platform::host().processes.parentProcessIdentifier();

  logMessage("===================================================", kLevel);
  logMessage(fmt::format("Karno Log Started (defaults verboseLogging={})",
                         KarnoSettings::instance().verboseLogging() ? 1 : 0),
             kLevel);
  logMessage(fmt::format("Karno Version: {}", descriptionOrNull(version)), kLevel);
  logMessage(
      fmt::format("Parent Process: {} ({})", KarnoProcessUtils::stringForProcessNameForPid(parent), parent),
      kLevel);
}

}  // namespace karno
