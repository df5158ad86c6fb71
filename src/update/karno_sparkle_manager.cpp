#include "update/karno_sparkle_manager.h"

#include <fmt/format.h>

#include <cstdint>
#include <limits>

#include "log/karno_log.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "platform/text/utf8.h"
#include "settings/karno_admin_settings.h"
#include "system/fuse_manager.h"
#include "update/feed_marker.h"
#include "util/error.h"
#include "util/string_utils.h"
#include "util/utilities.h"

namespace karno {
namespace {

constexpr std::string_view kPublicFeedHost = "updates.vantul.it";
// Brackets in the place of the host hold an address of IPv6, and close.
constexpr std::string_view kURL =
    R"(\A(?!(?:[A-Za-z][A-Za-z0-9+.-]*:)?)"
    R"(//(?!(?:[^/?#\[\]]*@)?(?:\[[0-9A-Fa-f:.]+\](?::[0-9]*)?|[^/?#\[\]]*)(?:[/?#]|\z))))"
    R"((?:[A-Za-z0-9._~:/?#\[\]@!$&'()*+,;=-]|%[0-9A-Fa-f]{2})+\z)";

std::string feedOnHost(std::string_view path) {
  const auto configured =
      platform::host().bundles.mainBundle().objectForInfoDictionaryKey("KarnoUpdateFeedHost");
  const std::string* host = configured ? configured->get<std::string>() : nullptr;
  return fmt::format("https://{}{}", host != nullptr && !host->empty() ? *host : kPublicFeedHost, path);
}

void runOnMainQueueAndWait(const platform::Block& block) {
  const std::shared_ptr<platform::DispatchGroup> done = platform::host().dispatch.makeGroup();
  done->enter();
  platform::host().dispatch.mainQueue().async([&block, done] {
    const std::shared_ptr<void> leaving(nullptr, [done](void*) { done->leave(); });
    block();
  });
  done->wait(std::numeric_limits<std::int64_t>::max());
}

}  // namespace

KarnoSparkleManager& KarnoSparkleManager::instance() {
  static platform::NeverDestroyed<KarnoSparkleManager> manager;
  return *manager;
}

platform::Updater& KarnoSparkleManager::sparkleUpdater() {
  const std::lock_guard lock(buildLock_);
  if (!sparkleUpdater_) sparkleUpdater_ = platform::host().updaters.makeUpdater(*this);
  return *sparkleUpdater_;
}

void KarnoSparkleManager::start() {
  KarnoLog& log = KarnoLog::manager();
  KarnoSparkleManager& manager = instance();
  log.logInfo("Sparkle[START] Starting Up");
  runOnMainQueueAndWait([&] {
    manager.sparkleUpdater().clearFeedURLFromUserDefaults();
    if (const auto error = manager.sparkleUpdater().startUpdater())
      log.logError(fmt::format("Sparkle[INIT] Failed to start. Reason: {}", error->description()));
  });
  manager.checkFuseFollowingAnUpdate();

  const KarnoTristate updatesEnabled = KarnoAdminSettings::instance().updatesEnabled();
  if (updatesEnabled == KarnoTristate::NotSet) return;
  const bool enabled = updatesEnabled == KarnoTristate::On;
  log.logInfo(fmt::format("Sparkle[CONFIG] Updates {} by admin", enabled ? "enabled" : "disabled"));
  manager.sparkleUpdater().setAutomaticallyChecksForUpdates(enabled);
}

bool KarnoSparkleManager::isUpdateInProgress() {
  const platform::Updater& updater = sparkleUpdater();
  return updater.sessionInProgress() || !updater.canCheckForUpdates();
}

KarnoSparkleManager::Feed KarnoSparkleManager::chooseFeed() const {
  const platform::Platform& host = platform::host();
  const std::string marker = feedMarkerPath();
  if (!host.files.fileExists(marker)) return {.url = feedOnHost("/updates/macos/appcast.eddsa.xml")};

  const std::string debugFeed = feedOnHost("/updates/macos/appcast.eddsa.debug.xml");
  const Result<std::string> bytes = host.files.read(marker);
  const std::string text =
      bytes && platform::isValidUTF8(bytes.value()) ? trimmingWhitespaceAndNewlines(bytes.value()) : "";
  if (text.empty()) return {.url = debugFeed};
  if (host.text.containsMatch(kURL, text, false)) return {.url = text};
  return {.url = debugFeed, .badMarker = marker};
}

std::string KarnoSparkleManager::feedURL() const {
  const Feed feed = chooseFeed();
  if (!feed.badMarker.empty())
    KarnoLog::manager().logWarn(fmt::format("Sparkle[FEED] Cannot parse url in {}", feed.badMarker));
  return feed.url;
}

void KarnoSparkleManager::checkForUpdates() {
  platform::Updater& updater = sparkleUpdater();
  if (updater.sessionInProgress()) {
    KarnoLog::manager().logWarn("Sparkle[CHECK] Ignoring check for updates when already in progress");
    return;
  }
  KarnoLog::manager().logInfo(fmt::format("Sparkle[CHECK] Checking for updates ({})", feedURL()));
  isMarkerToldOf_ = true;
  platform::host().application.setActivationPolicy(platform::ActivationPolicy::Regular);
  updater.checkForUpdates();
}

void KarnoSparkleManager::setCheckForUpdatesAutomatically(bool automatically) {
  KarnoLog::manager().logInfo(
      fmt::format("Sparkle[CONFIG] Check updates automatically={}", automatically ? 1 : 0));
  sparkleUpdater().setAutomaticallyChecksForUpdates(automatically);
}

void KarnoSparkleManager::resetSparkle() {
  platform::UserDefaults& defaults = platform::host().userDefaults.standardUserDefaults();
  defaults.setBool(false, "SUHasLaunchedBefore");
  defaults.synchronize();
}

std::string KarnoSparkleManager::updatedTouchfile() {
  const std::lock_guard lock(buildLock_);
  if (updatedTouchfile_.empty()) updatedTouchfile_ = Utilities::karnoCacheDirectory() + "/.karnoUpdated";
  return updatedTouchfile_;
}

void KarnoSparkleManager::recordKarnoHasBeenUpdated() {
  KarnoLog& log = KarnoLog::manager();
  log.logInfo("Sparkle[INSTALL] Creating 'updated' touchfile");
  if (platform::host().files.createFile(updatedTouchfile()))
    log.logError(
        fmt::format("Sparkle[INSTALL] Failed to create 'updated' touchfile ({})", updatedTouchfile()));
}

void KarnoSparkleManager::checkFuseFollowingAnUpdate() {
  if (!platform::host().files.fileExists(updatedTouchfile())) return;
  KarnoLog::manager().logInfo("Sparkle[START] Checking Fuse following a Karno update");
  FuseManager::instance().promptUserIfUpdateIsAvailableCompletion([this] {
    const auto error = platform::host().files.remove(updatedTouchfile());
    if (!error) return;
    KarnoLog::manager().logError(fmt::format("Sparkle[START] Failed to remove '{}'. Reason:{}",
                                             updatedTouchfile(), error->description()));
  });
}

}  // namespace karno
