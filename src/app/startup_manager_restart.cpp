#include <fmt/format.h>

#include "app/app_delegate.h"
#include "app/karno_embedded_app.h"
#include "app/startup_manager.h"
#include "ipc/karno_process_utils.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "platform/system_path.h"
#include "util/string_utils.h"

namespace karno {
namespace {

constexpr double kQuitTimeout = 5.0;  // seconds

// Without a bundle there is nothing to wait for.
bool embeddedAppHasQuit(std::string_view tag) {
  const auto bundle = KarnoEmbeddedApp::manager().bundle();
  return !bundle || KarnoProcessUtils::waitForApplicationToTerminateWithBundleID(
                        descriptionOrNull(bundle->bundleIdentifier()), kQuitTimeout, tag);
}

// "-n" starts a second instance although this one still runs.
void openWrapperAnew(const std::string& name) {
  const Result<std::int32_t> opener = platform::host().tasks.launch(
      {.executablePath = platform::systemPath("/usr/bin/open"),
       .arguments = {"-n", platform::host().bundles.mainBundle().bundlePath(), "--args", "-launch", name}},
      [](const platform::TaskEnd&) {});
  if (!opener) {
    KarnoLog::manager().logError(
        fmt::format("Startup[RESTART] Failed to restart wrapper. Reason: {}", opener.error().description()));
  }
}

}  // namespace

// The flag falls before the new launch: an end of the old child that is only told afterwards counts as
// unplanned.
void StartupManager::restartKarno() {
  setRestartingEmbeddedKarnoApp(true);
  platform::host().dispatch.globalQueue(platform::QueuePriority::Default).async([this] {
    KarnoLog& log = KarnoLog::manager();
    if (!embeddedAppHasQuit("Restart")) {
      log.logError("Startup[RESTART] Failed to restart Karno - because it has not exited");
      if (const auto target = delegate()) target->startUpDidFailToLaunchKarno(*this);
      setRestartingEmbeddedKarnoApp(false);
      return;
    }
    setRestartingEmbeddedKarnoApp(false);
    launchKarnoWithCompletion([this, &log](bool success, const std::optional<Error>& error) {
      if (success) {
        if (const auto target = delegate()) target->startUpDidLaunchKarnoSuccessfully(*this);
        return;
      }
      log.logError(
          fmt::format("Startup[RESTART] Failed to restart Karno. Reason: {}", error->localizedDescription()));
      if (const auto target = delegate()) target->startUpDidFailToLaunchKarno(*this);
    });
  });
}

void StartupManager::restartWrapper() {
  if (KarnoEmbeddedApp::manager().appType() != KarnoAppType::FileProvider) {
    restartWrapperForFuse();
  } else {
    restartWrapperForFileProvider();
  }
}

void StartupManager::restartWrapperForFuse() {
  restartWrapperForAppEmbeddedName(std::string(KarnoEmbeddedApp::nameForFuseApp()));
}

void StartupManager::restartWrapperForFileProvider() {
  restartWrapperForAppEmbeddedName(std::string(KarnoEmbeddedApp::nameForFileProviderApp()));
}

// The flag stays set: this process only has its own end before it.
void StartupManager::restartWrapperForAppEmbeddedName(const std::string& name) {
  setRestartingEmbeddedKarnoApp(true);
  platform::host().dispatch.globalQueue(platform::QueuePriority::Default).async([this, name] {
    KarnoLog& log = KarnoLog::manager();
    if (!embeddedAppHasQuit("RestartWrapper")) {
      log.logError("Startup[RESTART] Failed to restart Wrapper - because Karno has not exited");
      if (const auto target = delegate()) target->startUpDidFailToLaunchKarno(*this);
      setRestartingEmbeddedKarnoApp(false);
      return;
    }
    log.logInfo(fmt::format("Startup[RESTART] Karno has quit - restarting wrapper (-launch {})", name));
    platform::host().dispatch.mainQueue().async([name] {
      openWrapperAnew(name);
      AppDelegate::terminateWithReason("Restart Wrapper");
    });
  });
}

}  // namespace karno
