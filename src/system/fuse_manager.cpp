#include "system/fuse_manager.h"

#include <fmt/format.h>

#include "log/karno_log.h"
#include "platform/platform.h"
#include "platform/property_lists/property_lists.h"
#include "system/fuse_requirements_manager.h"
#include "system/karno_os_info_manager.h"
#include "util/string_utils.h"

namespace karno {
namespace {

bool isMissing(const std::optional<std::string>& text) { return !text || text->empty(); }

}  // namespace

FuseManager& FuseManager::instance() {
  static platform::NeverDestroyed<FuseManager> manager;
  return *manager;
}

void FuseManager::setDelegate(std::weak_ptr<FuseManagerDelegate> delegate) {
  const std::lock_guard lock(lock_);
  delegate_ = std::move(delegate);
}

std::shared_ptr<FuseManagerDelegate> FuseManager::delegate() {
  const std::lock_guard lock(lock_);
  return delegate_.lock();
}

void FuseManager::checkSystemMeetsRequirements() {
  const bool isMet = checkFuseIsInstalledInSystem(false);
  const bool isUpgrade = !isMet && !isMissing(installedFuseVersion());
  const auto target = delegate();
  if (!target) return;
  if (isMet) {
    target->fuseMeetsRequirements(*this);
  } else {
    target->fuseNeedsToBeInstalled(*this, isUpgrade);
  }
}

bool FuseManager::checkFuseIsInstalledInSystem(bool quiet) {
  KarnoLog& log = KarnoLog::manager();
  const KarnoOSInfoManager& system = KarnoOSInfoManager::instance();
  const std::optional<std::string>& cpu = system.cpu();
  if (isMissing(cpu)) {
    log.logError("Fuse[SYSTEM] Failed to identify the system cpu");
    return false;
  }
  if (!quiet) log.logInfo(fmt::format("Fuse[SYSTEM] CPU: '{}'", *cpu));

  const std::optional<std::string>& os = system.productVersion();
  if (isMissing(os)) {
    log.logError("Fuse[SYSTEM] Failed to identify the system version");
    return false;
  }
  if (!quiet) log.logInfo(fmt::format("Fuse[SYSTEM] O/S Version: '{}'", *os));

  const std::optional<std::string> fuse = installedFuseVersion();
  if (!fuse) {
    if (!quiet) log.logWarn("Fuse[SYSTEM] Fuse is not installed");
    return false;
  }
  if (!quiet) log.logInfo(fmt::format("Fuse[SYSTEM] Fuse Version: '{}'", *fuse));

  return FuseRequirementsManager::instance().doesMeetRequirementsForSystemCPU(*cpu, *fuse, *os);
}

std::optional<std::string> FuseManager::pathOfPlistForFrameworkNamed(const std::string& name) {
  const std::vector<std::string> libraries = platform::host().files.localLibraryFolders();
  if (libraries.empty() || libraries.front().empty()) return std::nullopt;
  return u_stringByAppendingPathComponents(libraries.front(),
                                           {"Frameworks", name, "Resources", "Info.plist"});
}

std::optional<platform::Value::Dictionary> FuseManager::plistForFrameworkNamed(
    const std::string& name) const {
  const std::optional<std::string> path = pathOfPlistForFrameworkNamed(name);
  if (!path) {
    KarnoLog::manager().logWarn("Fuse: Failed to determine system /Library path");
    return std::nullopt;
  }
  const auto bytes = platform::host().files.read(*path);
  if (!bytes) return std::nullopt;
  auto list = platform::parseDictionary(bytes.value());
  return list ? std::optional(std::move(list.value())) : std::nullopt;
}

std::optional<platform::Value::Dictionary> FuseManager::fuseFrameworkPList() const {
  return plistForFrameworkNamed(kFuseFramework);
}

// A version that is no string counts as none.
std::optional<std::string> FuseManager::installedFuseVersion() const {
  const auto list = fuseFrameworkPList();
  if (!list) return std::nullopt;
  const auto* version = platform::entryOf<std::string>(*list, "CFBundleVersion");
  return version != nullptr ? std::optional(*version) : std::nullopt;
}

}  // namespace karno
