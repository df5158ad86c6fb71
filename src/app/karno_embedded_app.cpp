#include "app/karno_embedded_app.h"

#include <fmt/format.h>

#include <vector>

#include "log/karno_log.h"
#include "platform/platform.h"
#include "settings/karno_admin_settings.h"
#include "settings/karno_settings.h"
#include "util/utilities.h"

namespace karno {
namespace {

std::string_view yesOrNo(bool value) { return value ? "Yes" : "No"; }

}  // namespace

KarnoEmbeddedApp& KarnoEmbeddedApp::manager() {
  static platform::NeverDestroyed<KarnoEmbeddedApp> app;
  return *app;
}

KarnoAppType KarnoEmbeddedApp::appTypeForCommandLineArguments() {
  const std::vector<std::string> arguments = platform::host().processes.arguments();
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
    if (arguments[i] != "-launch") continue;
    if (arguments[i + 1] == nameForFileProviderApp()) {
      KarnoLog::manager().logDebug("EmbeddedApp[ARGS] Launch FileProvider (command-line)");
      return KarnoAppType::FileProvider;
    }
    if (arguments[i + 1] == nameForFuseApp()) {
      KarnoLog::manager().logDebug("EmbeddedApp[ARGS] Launch Fuse (command-line)");
      return KarnoAppType::Fuse;
    }
  }
  configureAppTypeForSystem();
  return KarnoSettings::instance().useFileProvider() ? KarnoAppType::FileProvider : KarnoAppType::Fuse;
}

void KarnoEmbeddedApp::configureAppTypeForSystem() {
  KarnoSettings& settings = KarnoSettings::instance();
  KarnoLog& log = KarnoLog::manager();

  const KarnoTristate forced = KarnoAdminSettings::instance().useFileProvider();
  if (forced != KarnoTristate::NotSet) {
    const bool use = forced == KarnoTristate::On;
    settings.setUseFileProviderVerified(true);
    settings.setUseFileProvider(use);
    log.logInfo(fmt::format("EmbeddedApp[CONFIGURE] Use File Provider = {} (admin)", yesOrNo(use)));
    return;
  }
  if (settings.useFileProviderVerified()) {
    log.logInfo(fmt::format("EmbeddedApp[CONFIGURE] Use File Provider = {} (verified)",
                            yesOrNo(settings.useFileProvider())));
    return;
  }
  settings.setUseFileProviderVerified(true);
  settings.setUseFileProvider(settings.isFirstStartup());
  const bool use = settings.useFileProvider();
  log.logInfo(fmt::format("EmbeddedApp[CONFIGURE] Use File Provider = {} ({})", yesOrNo(use),
                          use ? "first startup" : "already using Fuse"));
}

std::string KarnoEmbeddedApp::name() {
  const std::lock_guard lock(lookupLock_);
  if (!name_)
    name_ = std::string(appType_ != KarnoAppType::FileProvider ? nameForFuseApp() : nameForFileProviderApp());
  return *name_;
}

void KarnoEmbeddedApp::setName(std::string name) {
  const std::lock_guard lock(lookupLock_);
  name_ = std::move(name);
}

std::shared_ptr<const platform::Bundle> KarnoEmbeddedApp::bundle() {
  {
    const std::lock_guard lock(lookupLock_);
    if (bundle_) return bundle_;
  }
  auto found = Utilities::bundleForEmbeddedKarnoAppWithName(name());
  const std::lock_guard lock(lookupLock_);
  if (!bundle_) bundle_ = std::move(found);
  return bundle_;
}

void KarnoEmbeddedApp::setBundle(std::shared_ptr<const platform::Bundle> bundle) {
  const std::lock_guard lock(lookupLock_);
  bundle_ = std::move(bundle);
}

}  // namespace karno
