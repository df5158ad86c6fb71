#include <fmt/format.h>

#include "app/app_delegate.h"
#include "app/karno_embedded_app.h"
#include "app/startup_manager.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "update/karno_sparkle_manager.h"
#include "util/string_utils.h"
#include "util/utilities.h"

namespace karno {
namespace {

constexpr std::int32_t kNoSuchFile = 2;
constexpr std::int32_t kLaunchFailed = -1;

platform::Result<std::int32_t> launch(const platform::Bundle& bundle,
                                      platform::Tasks::TerminationHandler onTermination) {
  const std::optional<std::string> executable = bundle.executablePath();
  if (!executable)
    return Utilities::errorWithPOSIXCode(kNoSuchFile, "The application has no executable file");
  // One word with a blank in it: the embedded application reads it that way.
  const std::string parent =
      fmt::format("--parent {}", std::int64_t{platform::host().processes.currentProcessIdentifier()});
  return platform::host().tasks.launch({.executablePath = *executable, .arguments = {parent}},
                                       std::move(onTermination));
}

}  // namespace

void StartupManager::launchKarno() {
  platform::host().dispatch.globalQueue(platform::QueuePriority::Default).async([this] {
    launchKarnoWithCompletion([this](bool success, const std::optional<Error>& error) {
      if (success) {
        if (const auto target = delegate()) target->startUpDidLaunchKarnoSuccessfully(*this);
        KarnoSparkleManager::start();
        return;
      }
      KarnoLog::manager().logError(
          fmt::format("Startup[LAUNCH] Failed to launch Karno. Reason: {}", error->localizedDescription()));
      if (const auto target = delegate()) target->startUpDidFailToLaunchKarno(*this);
    });
  });
}

void StartupManager::launchKarnoWithCompletion(const LaunchCompletion& completion) {
  KarnoLog& log = KarnoLog::manager();
  const std::shared_ptr<const platform::Bundle> bundle = KarnoEmbeddedApp::manager().bundle();
  if (!bundle) {
    constexpr std::string_view kReason = "Could not find embedded Karno app";
    log.logWarn(fmt::format("Startup[LAUNCH] Failed to launch Karno. Reason: {}", kReason));
    completion(false, Utilities::errorWithPOSIXCode(kNoSuchFile, std::string(kReason)));
    return;
  }

  const std::string appName = lastPathComponent(bundle->bundlePath());
  log.logInfo(fmt::format("Startup[LAUNCH] Launching {}", appName));
  const Result<std::int32_t> child =
      launch(*bundle, [this](const platform::TaskEnd& end) { childDidTerminate(end); });
  if (child) {
    log.logInfo(fmt::format("Startup[LAUNCH] Launched {} (pid: {})", appName, child.value()));
    embeddedKarnoProcessIdentifier_ = child.value();
    completion(true, std::nullopt);
    return;
  }
  embeddedKarnoProcessIdentifier_ = kLaunchFailed;
  log.logWarn(fmt::format("Startup[LAUNCH] Failed to launch '{}'. Reason: {}",
                          descriptionOrNull(bundle->executableURL()), child.error().description()));
  completion(false, child.error());
}

// The texts name "Karno.app" whichever build ran, and neither status nor reason changes the decision.
void StartupManager::childDidTerminate(const platform::TaskEnd& end) {
  KarnoLog& log = KarnoLog::manager();
  log.logWarn(fmt::format("Startup[TERMINATED] Child terminated (status:{}, reason:{})",
                          end.terminationStatus, static_cast<long>(end.terminationReason)));
  if (restartingEmbeddedKarnoApp()) {
    log.logWarn("Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being restarted");
    return;
  }
  if (KarnoSparkleManager::instance().isUpdateInProgress()) {
    log.logWarn("Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated");
    return;
  }
  log.logWarn("Startup[TERMINATED] Embedded Karno.app terminated - quitting");
  AppDelegate::terminateWithReason("Embedded Karno.app terminated");
}

}  // namespace karno
