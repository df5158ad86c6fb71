#include "system/karno_os_info_manager.h"

#include <fmt/format.h>

#include <vector>

#include "ipc/karno_process_utils.h"
#include "log/karno_log.h"
#include "util/error.h"
#include "util/string_utils.h"

namespace karno {
namespace {

// A failure may come without an error.
std::string reasonOf(const std::optional<Error>& error) {
  return error ? error->localizedDescription() : "(null)";
}

}  // namespace

KarnoOSInfoManager& KarnoOSInfoManager::instance() {
  static platform::NeverDestroyed<KarnoOSInfoManager> manager;
  return *manager;
}

void KarnoOSInfoManager::buildAllInformation() {
  if (builtOSInfo_) return;
  builtOSInfo_ = true;
  buildSoftwareVersion();
  buildCpuInfo();
  if (buildErrorMessage_) {
    KarnoLog::manager().logError(fmt::format("KarnoOSInfoManager: {}", *buildErrorMessage_));
  }
}

void KarnoOSInfoManager::buildSoftwareVersion() {
  std::vector<std::string> lines;
  std::optional<Error> error;
  if (!KarnoProcessUtils::executeCommand("sw_vers", &lines, false, &error)) {
    buildErrorMessage_ =
        fmt::format("KarnoOSInfoManager: Failed to build software version info. Reason: {}", reasonOf(error));
    return;
  }
  for (const std::string& line : lines) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos || line.find(':', colon + 1) != std::string::npos) continue;
    const std::string key = trimmingWhitespaceAndNewlines(line.substr(0, colon));
    std::string value = trimmingWhitespaceAndNewlines(line.substr(colon + 1));
    if (key == "ProductName")
      productName_ = std::move(value);
    else if (key == "ProductVersion")
      productVersion_ = std::move(value);
    else if (key == "BuildVersion")
      buildVersion_ = std::move(value);
  }
}

void KarnoOSInfoManager::buildCpuInfo() {
  std::vector<std::string> lines;
  std::optional<Error> error;
  if (!KarnoProcessUtils::executeCommand("uname -m", &lines, true, &error)) {
    buildErrorMessage_ = fmt::format("Failed to build cpu info. Reason: {}", reasonOf(error));
    return;
  }
  if (lines.empty()) {
    buildErrorMessage_ = "Failed to retrieve any cpu info";
    return;
  }
  cpu_ = lines.front();
  isIntel64_ = cpu_ == "x86_64";
  isArm64_ = cpu_ == "arm64";
}

}  // namespace karno
