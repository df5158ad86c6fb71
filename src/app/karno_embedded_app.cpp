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

const std::string& KarnoEmbeddedApp::name() {
  if (!name_)
    name_ = std::string(appType_ != KarnoAppType::FileProvider ? nameForFuseApp() : nameForFileProviderApp());
  return *name_;
}

std::shared_ptr<const platform::Bundle> KarnoEmbeddedApp::bundle() {
  if (!bundle_) bundle_ = Utilities::bundleForEmbeddedKarnoAppWithName(name());
  return bundle_;
}

}  // namespace karno
