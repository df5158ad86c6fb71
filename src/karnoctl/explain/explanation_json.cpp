#include "karnoctl/explain/explanation_json.h"

#include <nlohmann/json.hpp>

namespace karno::karnoctl {
namespace {

using Json = nlohmann::ordered_json;

template <class T>
Json orNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json();
}

Json storedValue(const std::optional<platform::Value>& value) {
  if (!value) return {};
  if (const bool* truth = value->get<bool>()) return *truth;
  if (const std::int64_t* number = value->get<std::int64_t>()) return *number;
  if (const double* number = value->get<double>()) return *number;
  return value->description();
}

const char* nameOf(ChoiceRule rule) {
  switch (rule) {
    case ChoiceRule::Administrator:
      return "administrator";
    case ChoiceRule::SettledBefore:
      return "settled-before";
    case ChoiceRule::FirstStartup:
      return "first-startup";
    case ChoiceRule::AlreadyUsingFuse:
      break;
  }
  return "already-using-fuse";
}

const char* nameOf(SystemCheck check) {
  switch (check) {
    case SystemCheck::FileProvider:
      return "passes-with-file-provider";
    case SystemCheck::Fuse:
      return "passes-with-fuse";
    case SystemCheck::FuseForOldSystem:
      return "passes-with-fuse-on-old-macos";
    case SystemCheck::FuseToBeUpgraded:
      return "asks-to-upgrade-fuse";
    case SystemCheck::FuseToBeInstalled:
      break;
  }
  return "asks-to-install-fuse";
}

const char* nameOf(MoveRule rule) {
  switch (rule) {
    case MoveRule::Elsewhere:
      return "elsewhere";
    case MoveRule::Suppressed:
      return "suppressed";
    case MoveRule::InNoBundle:
      return "in-no-bundle";
    case MoveRule::InApplicationsFolder:
      break;
  }
  return "in-applications-folder";
}

const char* nameOf(LauncherPlace place) {
  switch (place) {
    case LauncherPlace::Downloads:
      return "downloads";
    case LauncherPlace::DiskImage:
      return "disk-image";
    case LauncherPlace::Translocated:
      return "translocated";
    case LauncherPlace::InsideApplication:
      return "inside-application";
    case LauncherPlace::Other:
      break;
  }
  return "other";
}

const char* nameOf(FeedSource source) {
  switch (source) {
    case FeedSource::NamedByMarker:
      return "named-by-marker";
    case FeedSource::DebugFeed:
      return "debug";
    case FeedSource::Deployment:
      break;
  }
  return "deployment";
}

const char* nameOf(KarnoTristate state) {
  switch (state) {
    case KarnoTristate::On:
      return "on";
    case KarnoTristate::Off:
      return "off";
    case KarnoTristate::NotSet:
      break;
  }
  return "not-set";
}

Json moveOf(const MoveExplanation& explanation) {
  const bool asks = explanation.asks();
  const Move& move = explanation.move;
  return {{"asks", asks},
          {"because", nameOf(explanation.rule)},
          {"bundle", move.bundlePath},
          {"place", asks ? Json(nameOf(explanation.place)) : Json()},
          {"diskImage", orNull(move.diskImageDevice)},
          {"destination", asks ? Json(move.destination) : Json()},
          {"replaces", explanation.isDestinationTaken},
          {"needsPassword", move.needsAuthorisation}};
}

Json requirementsOf(const Explanation& explanation) {
  Json rows = Json::array();
  for (const RequirementRow& row : explanation.requirements) {
    const FuseRequirement& requirement = row.requirement;
    rows.push_back({{"processor", requirement.requiredCPU()},
                    {"macFUSE", requirement.fuseVersion()},
                    {"macOSFrom", requirement.macMinVersion()},
                    {"macOSTo", requirement.macMaxVersion()},
                    {"met", row.objection.empty()},
                    {"objection", row.objection}});
  }
  return rows;
}

Json settingsOf(const Explanation& explanation) {
  Json settings = Json::object();
  for (const AdministratorSetting* setting : {&explanation.useFileProvider, &explanation.updatesEnabled}) {
    settings[setting->key] = {{"stored", storedValue(setting->value)},
                              {"forced", setting->isForced},
                              {"readAs", nameOf(setting->readAs)}};
  }
  for (const UserSetting& setting : explanation.userSettings) {
    settings[setting.key] = {{"stored", storedValue(setting.value)}, {"readAs", setting.readAs}};
  }
  return settings;
}

}  // namespace

std::string explanationJson(const Explanation& explanation) {
  const Json json = {
      {"build", explanation.choice.useFileProvider ? "file-provider" : "fuse"},
      {"because", nameOf(explanation.choice.rule)},
      {"bundle", explanation.bundleName},
      {"bundleIsThere", explanation.isBundleThere},
      {"systemCheck", nameOf(explanation.check)},
      {"move", moveOf(explanation.move)},
      {"system",
       {{"macOS", orNull(explanation.system.macOS)},
        {"processor", orNull(explanation.system.cpu)},
        {"macFUSE", orNull(explanation.system.fuse)},
        {"macFUSEFile", explanation.fuseInformationFile}}},
      {"requirements", requirementsOf(explanation)},
      {"feed", {{"url", explanation.feedURL}, {"source", nameOf(explanation.feedSource)}}},
      {"settings", settingsOf(explanation)},
  };
  // Settings and files may hold anything; what is no UTF-8 is replaced.
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace karno::karnoctl
