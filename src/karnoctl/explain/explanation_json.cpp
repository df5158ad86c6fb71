#include <cstddef>

#include "karnoctl/explain/explanation_text.h"

namespace karno::karnoctl {
namespace {

Json storedValue(const std::optional<platform::Value>& value) {
  if (!value) return {};
  if (const bool* truth = value->get<bool>()) return *truth;
  if (const std::int64_t* number = value->get<std::int64_t>()) return *number;
  if (const double* number = value->get<double>()) return *number;
  return value->description();
}

// Each in the order of its enumeration.
constexpr const char* kRules[] = {"administrator", "settled-before", "first-startup", "already-using-fuse"};
constexpr const char* kChecks[] = {"passes-with-file-provider", "passes-with-fuse",
                                   "passes-with-fuse-on-old-macos", "asks-to-install-fuse",
                                   "asks-to-upgrade-fuse"};
constexpr const char* kMoveRules[] = {"elsewhere", "in-applications-folder", "suppressed", "in-no-bundle"};
constexpr const char* kPlaceNames[] = {"downloads", "disk-image", "translocated", "inside-application",
                                       "other"};
constexpr const char* kFeeds[] = {"deployment", "named-by-marker", "debug"};
constexpr const char* kTristates[] = {"on", "off", "not-set"};

template <std::size_t Count, class Enumeration>
const char* nameIn(const char* const (&names)[Count], Enumeration value) {
  return names[static_cast<std::size_t>(value)];
}

Json moveOf(const MoveExplanation& explanation) {
  const bool asks = explanation.asks();
  const Move& move = explanation.move;
  return {{"asks", asks},
          {"because", nameIn(kMoveRules, explanation.rule)},
          {"bundle", move.bundlePath},
          {"place", asks ? Json(nameIn(kPlaceNames, explanation.place)) : Json()},
          {"diskImage", orNull(move.diskImageDevice)},
          {"destination", asks ? Json(move.destination) : Json()},
          {"replaces", explanation.isDestinationTaken},
          {"needsPassword", move.needsAuthorisation}};
}

}  // namespace

void to_json(Json& json, const DamagedFile& file) { json = {{"file", file.path}, {"why", file.why}}; }

void to_json(Json& json, const RequirementRow& row) {
  const FuseRequirement& requirement = row.requirement;
  json = {{"processor", requirement.requiredCPU()},
          {"macFUSE", requirement.fuseVersion()},
          {"macOSFrom", orNull(lowestMacOS(requirement))},
          {"macOSTo", orNull(highestMacOS(requirement))},
          {"met", row.objection.empty()},
          {"objection", row.objection.empty() ? Json() : Json(row.objection)}};
}

const char* nameOf(ChoiceRule rule) { return nameIn(kRules, rule); }

Json settingsJson(const Explanation& explanation) {
  Json settings = Json::object();
  for (const AdministratorSetting* setting : {&explanation.useFileProvider, &explanation.updatesEnabled}) {
    settings[setting->key] = {{"stored", storedValue(setting->value)},
                              {"forced", setting->isForced},
                              {"readAs", nameIn(kTristates, setting->readAs)}};
  }
  for (const UserSetting& setting : explanation.userSettings) {
    settings[setting.key] = {{"stored", storedValue(setting.value)}, {"readAs", setting.readAs}};
  }
  return settings;
}

std::string explanationJson(const Explanation& explanation) {
  return jsonText({
      {"build", explanation.choice.useFileProvider ? "file-provider" : "fuse"},
      {"because", nameOf(explanation.choice.rule)},
      {"bundle", explanation.bundleName},
      {"bundleIsThere", explanation.isBundleThere},
      {"systemCheck", nameIn(kChecks, explanation.check)},
      {"move", moveOf(explanation.move)},
      {"system",
       {{"macOS", orNull(explanation.system.macOS)},
        {"processor", orNull(explanation.system.cpu)},
        {"macFUSE", orNull(explanation.system.fuse)},
        {"macFUSEFile", explanation.fuseInformationFile}}},
      {"macFUSENeeded", orNull(explanation.advice.fuse)},
      {"macOSNeeded", orNull(explanation.advice.macOS)},
      {"requirements", explanation.requirements},
      {"feed", {{"url", explanation.feedURL}, {"source", nameIn(kFeeds, explanation.feedSource)}}},
      {"settings", settingsJson(explanation)},
      {"damagedFiles", explanation.damagedFiles},
  });
}

}  // namespace karno::karnoctl
