#include "karnoctl/explain/explanation.h"

#include <algorithm>
#include <cerrno>

#include "app/karno_embedded_app.h"
#include "karnoctl/error_text.h"
#include "karnoctl/explain/read_only_platform.h"
#include "platform/property_lists/property_lists.h"
#include "platform/system_path.h"
#include "settings/karno_admin_settings.h"
#include "settings/karno_settings.h"
#include "system/fuse_manager.h"
#include "system/karno_os_info_manager.h"
#include "update/feed_marker.h"
#include "update/karno_sparkle_manager.h"
#include "util/string_utils.h"
#include "util/utilities.h"

namespace karno::karnoctl {
namespace {

AdministratorSetting administratorSetting(const std::string& key) {
  platform::ManagedPreferences& preferences = platform::host().managedPreferences;
  const std::string domain(KarnoAdminSettings::applicationID());
  return {.key = key,
          .value = preferences.copyAppValue(key, domain),
          .isForced = preferences.isAppValueForced(key, domain),
          .readAs = KarnoAdminSettings::instance().tristateForKey(key)};
}

UserSetting userSetting(const std::string& key, bool readAs) {
  return {.key = key, .value = KarnoSettings::instance().userDefaults().objectForKey(key), .readAs = readAs};
}

// Where both systems look, the most important first.
std::vector<DamagedFile> damagedFiles() {
  const platform::Files& files = platform::host().files;
  const std::string home = files.homeDirectory();
  const std::string name = "/" + std::string(KarnoAdminSettings::applicationID()) + ".plist";
  std::vector<DamagedFile> damaged;
  for (const std::string& folder :
       {platform::systemPath("/Library/Managed Preferences/" + lastPathComponent(home)),
        platform::systemPath("/Library/Managed Preferences"), home + "/Library/Preferences",
        platform::systemPath("/Library/Preferences")}) {
    const auto bytes = files.read(folder + name);
    if (!bytes && bytes.error() == platform::Error::posix(ENOENT)) continue;
    const auto list = bytes ? platform::parseDictionary(bytes.value()) : bytes.error();
    if (!list) damaged.push_back({.path = folder + name, .why = reasonOf(list.error())});
  }
  return damaged;
}

void gatherSettings(Explanation& explanation) {
  explanation.damagedFiles = damagedFiles();
  const KarnoSettings& settings = KarnoSettings::instance();
  explanation.useFileProvider = administratorSetting("USE_FILE_PROVIDER");
  explanation.updatesEnabled = administratorSetting("UPDATES_ENABLED");

  // The user's own value: the launcher's reading of it asks the administrator first.
  const bool storedChoice = settings.userDefaults().boolForKey("useFileProvider");
  explanation.facts = {.administrator = explanation.useFileProvider.readAs,
                       .verified = settings.useFileProviderVerified(),
                       .storedChoice = storedChoice,
                       .firstStartup = settings.isFirstStartup()};
  explanation.userSettings = {userSetting("useFileProviderVerified", settings.useFileProviderVerified()),
                              userSetting("useFileProvider", storedChoice),
                              userSetting("isFirstStartup", settings.isFirstStartup()),
                              userSetting("verboseLogging", settings.verboseLogging())};
}

void gatherChoice(Explanation& explanation) {
  explanation.choice = buildChoice(explanation.facts);
  explanation.bundleName = explanation.choice.useFileProvider ? KarnoEmbeddedApp::nameForFileProviderApp()
                                                              : KarnoEmbeddedApp::nameForFuseApp();
  explanation.isBundleThere = Utilities::bundleForEmbeddedKarnoAppWithName(explanation.bundleName) != nullptr;
}

SystemCheck systemCheck(const Explanation& explanation) {
  const bool useFileProvider = explanation.choice.useFileProvider;
  if (useFileProvider && platform::host().systemVersion.isAtLeast(12, 3, 0)) return SystemCheck::FileProvider;
  const bool isMet = std::ranges::any_of(explanation.requirements,
                                         [](const RequirementRow& row) { return row.objection.empty(); });
  if (isMet) return useFileProvider ? SystemCheck::FuseForOldSystem : SystemCheck::Fuse;
  const std::optional<std::string>& fuse = explanation.system.fuse;
  return fuse && !fuse->empty() ? SystemCheck::FuseToBeUpgraded : SystemCheck::FuseToBeInstalled;
}

void gatherSystem(Explanation& explanation) {
  const KarnoOSInfoManager& system = KarnoOSInfoManager::instance();
  explanation.system = {.cpu = system.cpu(),
                        .macOS = system.productVersion(),
                        .fuse = FuseManager::instance().installedFuseVersion()};
  explanation.buildVersion = system.buildVersion();
  explanation.fuseInformationFile =
      FuseManager::pathOfPlistForFrameworkNamed(FuseManager::kFuseFramework).value_or("");
  for (const FuseRequirement& row : FuseRequirement::allOptions()) {
    explanation.requirements.push_back(
        {.requirement = row, .objection = objectionTo(row, explanation.system)});
  }
  explanation.check = systemCheck(explanation);
  explanation.advice = fuseAdvice(explanation.system);
}

void gatherFeed(Explanation& explanation) {
  const platform::Files& files = platform::host().files;
  explanation.feedURL = KarnoSparkleManager::instance().feedURL();
  explanation.feedMarker = feedMarkerPath();
  if (!files.fileExists(explanation.feedMarker)) return;
  const auto text = files.read(explanation.feedMarker);
  const bool isNamed = text && trimmingWhitespaceAndNewlines(text.value()) == explanation.feedURL;
  explanation.feedSource = isNamed ? FeedSource::NamedByMarker : FeedSource::DebugFeed;
}

}  // namespace

BuildChoice buildChoice(const ChoiceFacts& facts) {
  if (facts.administrator != KarnoTristate::NotSet) {
    return {.useFileProvider = facts.administrator == KarnoTristate::On, .rule = ChoiceRule::Administrator};
  }
  if (facts.verified) return {.useFileProvider = facts.storedChoice, .rule = ChoiceRule::SettledBefore};
  if (facts.firstStartup) return {.useFileProvider = true, .rule = ChoiceRule::FirstStartup};
  return {.useFileProvider = false, .rule = ChoiceRule::AlreadyUsingFuse};
}

Explanation gatherExplanation(platform::Platform& platform) {
  const ReadOnlyPlatform readOnly(platform);
  Explanation explanation;
  explanation.move = explainMove();
  gatherSettings(explanation);
  gatherChoice(explanation);
  gatherSystem(explanation);
  gatherFeed(explanation);
  return explanation;
}

}  // namespace karno::karnoctl
