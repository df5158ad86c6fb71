#include <fmt/format.h>

#include <utility>

#include "app/app_delegate.h"
#include "app/startup_manager.h"
#include "ipc/karno_process_utils.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "system/fuse_manager.h"
#include "update/karno_sparkle_manager.h"

// What the launcher does at each stage of an update session.
namespace karno {

using platform::ActivationPolicy;
using platform::AppcastItem;
using platform::Updater;

namespace {

void logInfo(const std::string& message) { KarnoLog::manager().logInfo(message); }

void setActivationPolicy(ActivationPolicy policy) {
  platform::host().application.setActivationPolicy(policy);
}

std::string wordFor(long choice) {
  switch (choice) {
    case platform::kUserUpdateChoiceSkip:
      return "skip";
    case platform::kUserUpdateChoiceInstall:
      return "install";
    case platform::kUserUpdateChoiceDismiss:
      return "dismiss";
    default:
      return fmt::format("'unknown decision' ({})", choice);
  }
}

std::string titleOf(const AppcastItem& item) { return item.title.value_or("(null)"); }

}  // namespace

// A check that the user asked for has told of a bad marker before; one by itself does so here.
std::string KarnoSparkleManager::feedURLStringForUpdater(Updater&) {
  return std::exchange(isMarkerToldOf_, false) ? chooseFeed().url : feedURL();
}

void KarnoSparkleManager::didFinishLoadingAppcast(Updater&) {
  logInfo(fmt::format("Sparkle[UPDATE] Downloaded appcast ({})", chooseFeed().url));
  setFoundKarnoUpdate(false);
}

void KarnoSparkleManager::didFindValidUpdate(Updater&, const AppcastItem& item) {
  logInfo(fmt::format("Sparkle[UPDATE] Found: {} ({})", titleOf(item), item.displayVersionString));
  platform::host().application.requestUserAttention(platform::AttentionRequest::Critical);
  setFoundKarnoUpdate(true);
}

void KarnoSparkleManager::userDidMakeChoice(Updater&, long choice, const AppcastItem&) {
  logInfo(fmt::format("Sparkle[UPDATE] User decided to {} update", wordFor(choice)));
  if (choice != platform::kUserUpdateChoiceInstall) setActivationPolicy(ActivationPolicy::Accessory);
}

// The text speaks of an automated check after one that the user asked for as well.
void KarnoSparkleManager::updaterDidNotFindUpdate(Updater&, const platform::Error& error) {
  logInfo(fmt::format("Sparkle[UPDATE] No update found. Reason: {}", error.description()));
  setFoundKarnoUpdate(false);
  logInfo("Sparkle[UPDATE] Checking Fuse for updates following automated update check");
  FuseManager::instance().promptUserIfUpdateIsAvailableCompletion(
      [] { setActivationPolicy(ActivationPolicy::Accessory); });
}

void KarnoSparkleManager::willDownloadUpdate(Updater&, const AppcastItem& item, const std::string& url) {
  logInfo(
      fmt::format("Sparkle[UPDATE] Downloading {} ({}) - {}", titleOf(item), item.displayVersionString, url));
}

void KarnoSparkleManager::didDownloadUpdate(Updater&, const AppcastItem&) {
  logInfo("Sparkle[UPDATE] Downloaded update");
}

void KarnoSparkleManager::failedToDownloadUpdate(Updater&, const AppcastItem&, const platform::Error& error) {
  KarnoLog::manager().logError(
      fmt::format("Sparkle[UPDATE] Failed to download update. Error: {}", error.description()));
}

void KarnoSparkleManager::userDidCancelDownload(Updater&) {
  KarnoLog::manager().logWarn("Sparkle[UPDATE] User cancelled download");
}

void KarnoSparkleManager::willExtractUpdate(Updater&, const AppcastItem&) {
  logInfo("Sparkle[UPDATE] Extracting update");
  setActivationPolicy(ActivationPolicy::Regular);
}

void KarnoSparkleManager::didExtractUpdate(Updater&, const AppcastItem&) {
  logInfo("Sparkle[UPDATE] Extracted update");
}

void KarnoSparkleManager::willInstallUpdate(Updater&, const AppcastItem& item) {
  logInfo(fmt::format("Sparkle[UPDATE] About to install: {} ({})", titleOf(item), item.displayVersionString));
}

bool KarnoSparkleManager::updaterShouldRelaunchApplication(Updater&) {
  logInfo("Sparkle[UPDATE] Relaunching app");
  recordKarnoHasBeenUpdated();
  KarnoProcessUtils::terminateKarnoAppWithPid(StartupManager::instance().embeddedKarnoProcessIdentifier(),
                                              "Updated");
  AppDelegate::terminateWithReason("Update complete");
  return false;
}

void KarnoSparkleManager::didAbortWithError(Updater&, const platform::Error& error) {
  KarnoLog::manager().logWarn(fmt::format("Sparkle[ABORT] Update Aborted ({})", error.description()));
  setActivationPolicy(ActivationPolicy::Accessory);
}

}  // namespace karno
