#include "update/karno_sparkle_manager.h"

#include <fmt/format.h>

#include "log/karno_log.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "update/feed_marker.h"
#include "util/error.h"
#include "util/string_utils.h"
#include "util/utf8.h"

namespace karno {
namespace {

constexpr std::string_view kPublicFeedHost = "updates.vantul.it";
constexpr std::string_view kURL = R"(\A(?:[A-Za-z0-9._~:/?#\[\]@!$&'()*+,;=-]|%[0-9A-Fa-f]{2})+\z)";

std::string feedOnHost(std::string_view path) {
  const auto configured =
      platform::host().bundles.mainBundle().objectForInfoDictionaryKey("KarnoUpdateFeedHost");
  const std::string* host = configured ? configured->get<std::string>() : nullptr;
  return fmt::format("https://{}{}", host != nullptr && !host->empty() ? *host : kPublicFeedHost, path);
}

}  // namespace

KarnoSparkleManager& KarnoSparkleManager::instance() {
  static platform::NeverDestroyed<KarnoSparkleManager> manager;
  return *manager;
}

void KarnoSparkleManager::start() { KarnoLog::manager().logInfo("Sparkle[START] Starting Up"); }

bool KarnoSparkleManager::isUpdateInProgress() const {
  const platform::Updater& updater = platform::host().updater;
  return updater.sessionInProgress() || !updater.canCheckForUpdates();
}

std::string KarnoSparkleManager::feedURL() const {
  const platform::Platform& host = platform::host();
  const std::string marker = feedMarkerPath();
  if (!host.files.fileExists(marker)) return feedOnHost("/updates/macos/appcast.eddsa.xml");

  const std::string debugFeed = feedOnHost("/updates/macos/appcast.eddsa.debug.xml");
  const Result<std::string> bytes = host.files.read(marker);
  const std::string text =
      bytes && isValidUtf8(bytes.value()) ? trimmingWhitespaceAndNewlines(bytes.value()) : "";
  if (text.empty()) return debugFeed;
  if (host.text.containsMatch(kURL, text, false)) return text;
  KarnoLog::manager().logWarn(fmt::format("Sparkle[FEED] Cannot parse url in {}", marker));
  return debugFeed;
}

void KarnoSparkleManager::checkForUpdates() {
  platform::Updater& updater = platform::host().updater;
  if (updater.sessionInProgress()) {
    KarnoLog::manager().logWarn("Sparkle[CHECK] Ignoring check for updates when already in progress");
    return;
  }
  KarnoLog::manager().logInfo(fmt::format("Sparkle[CHECK] Checking for updates ({})", feedURL()));
  updater.checkForUpdates();
}

void KarnoSparkleManager::setCheckForUpdatesAutomatically(bool automatically) {
  KarnoLog::manager().logInfo(
      fmt::format("Sparkle[CONFIG] Check updates automatically={}", automatically ? 1 : 0));
  platform::host().updater.setAutomaticallyChecksForUpdates(automatically);
}

void KarnoSparkleManager::resetSparkle() {
  platform::UserDefaults& defaults = platform::host().userDefaults.standardUserDefaults();
  defaults.setBool(false, "SUHasLaunchedBefore");
  defaults.synchronize();
}

}  // namespace karno
