#include "karnoctl/explain/explanation_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "settings/karno_admin_settings.h"

namespace karno::karnoctl {
namespace {

constexpr std::string_view kNotSet = "not set";

std::string_view yesOrNo(bool value) { return value ? "yes" : "no"; }

std::string orUnknown(const std::optional<std::string>& text) {
  return text && !text->empty() ? *text : "not known";
}

std::string outcomeText(const Explanation& explanation) {
  return fmt::format(
      "The next start runs the {} build, {}: {}.\n{}",
      explanation.choice.useFileProvider ? "File Provider" : "FUSE", explanation.bundleName,
      choiceReason(explanation.choice.rule),
      explanation.isBundleThere
          ? ""
          : fmt::format("It will fail: there is no {} in the launcher's bundle.\n", explanation.bundleName));
}

// Comes before all else in a start.
std::string_view moveOutcomeText(const MoveExplanation& move) {
  return move.asks()
             ? "Before that it asks whether it may move itself to the Applications folder, and starts again "
               "from there; without a yes it quits.\n"
             : "";
}

std::string checkText(const Explanation& explanation) {
  // In the order of SystemCheck.
  constexpr std::string_view kTexts[] = {
      "passes: macOS has File Provider from version 12.3 on", "passes: macFUSE is good enough",
      "passes, by macFUSE: macOS is older than 12.3, so File Provider cannot be used",
      "stops the start: the user is asked to install macFUSE: ",
      "stops the start: the user is asked to install a newer macFUSE: "};
  return fmt::format("The system check {}{}.\n", kTexts[static_cast<std::size_t>(explanation.check)],
                     explanation.check < SystemCheck::FuseToBeInstalled ? "" : fuseText(explanation));
}

std::string moveQuestionText(const MoveExplanation& explanation) {
  // In the order of MoveRule and of LauncherPlace.
  constexpr std::string_view kTexts[] = {
      "asked: it is in no Applications folder, ", "not asked: it is in an Applications folder",
      "not asked: moveToApplicationsFolderAlertSuppress is set (it.vantul.KarnoWrapper)",
      "not known: this karnoctl lies in no bundle"};
  constexpr std::string_view kPlaces[] = {"but in Downloads", "but on a disk image, where it stays",
                                          "but where macOS puts what is in quarantine",
                                          "but inside another application, where it stays", "nor below one"};
  return std::string(kTexts[static_cast<std::size_t>(explanation.rule)])
      .append(explanation.asks() ? kPlaces[static_cast<std::size_t>(explanation.place)] : "");
}

std::string moveText(const MoveExplanation& explanation) {
  const Move& move = explanation.move;
  std::string text = fmt::format("\nMove\n  launcher   {}\n  question   {}\n", move.bundlePath,
                                 moveQuestionText(explanation));
  if (!explanation.asks()) return text;
  text += fmt::format("  goes to    {}{}\n", move.destination,
                      move.needsAuthorisation ? ", by an administrator's password" : "");
  if (explanation.isDestinationTaken) {
    text += fmt::format("             what is there {}\n",
                        move.needsAuthorisation ? "is removed" : "goes to the Trash, unless it runs");
  }
  return text;
}

std::string choiceText(const Explanation& explanation) {
  const ChoiceFacts& facts = explanation.facts;
  const auto line = [&](bool decides, std::string_view name, const std::string& what) {
    return fmt::format("  {} {:<15} {}\n", decides ? '>' : ' ', name, what);
  };
  const ChoiceRule rule = explanation.choice.rule;
  const bool isAdministrators = rule == ChoiceRule::Administrator;
  const bool isSettled = rule == ChoiceRule::SettledBefore;
  const std::string settled =
      facts.verified ? fmt::format("useFileProvider = {}", yesOrNo(facts.storedChoice)) : "none";
  const std::string first = fmt::format("isFirstStartup = {}", yesOrNo(facts.firstStartup));
  return "\nChoice of the build (\">\" decides)\n" +
         line(isAdministrators, "administrator",
              "USE_FILE_PROVIDER " + (explanation.useFileProvider.value
                                          ? "= " + readingText(explanation.useFileProvider)
                                          : std::string("is not set"))) +
         line(isSettled, "settled choice", settled) +
         line(!isAdministrators && !isSettled, "first start", first);
}

std::string systemText(const Explanation& explanation) {
  const SystemFacts& system = explanation.system;
  const std::string build = explanation.buildVersion ? " (" + *explanation.buildVersion + ")" : "";
  const std::string fuse = system.fuse ? *system.fuse + ", read from" : "none, looked for in";
  return fmt::format("\nSystem\n  macOS      {}{}\n  processor  {}\n  macFUSE    {} {}\n",
                     orUnknown(system.macOS), build, orUnknown(system.cpu), fuse,
                     explanation.fuseInformationFile);
}

std::string requirementsText(const Explanation& explanation, bool isUTF8) {
  std::string text = "\nmacFUSE for the FUSE build (one row is enough)\n";
  for (const RequirementRow& row : explanation.requirements) {
    const FuseRequirement& requirement = row.requirement;
    const std::string needs = fmt::format("{:<6}  {:<8}  {}", requirement.requiredCPU(),
                                          requirement.fuseVersion() + "+", macOSRange(requirement));
    text += row.objection.empty()
                ? fmt::format("  {} {}\n", isUTF8 ? "✓" : "+", needs)
                : fmt::format("  {} {:<39}  {}\n", isUTF8 ? "✗" : "-", needs, row.objection);
  }
  return text;
}

std::string updatesText(const Explanation& explanation) {
  // In the order of FeedSource.
  constexpr std::string_view kSources[] = {"the usual one, since there is no {}", "named in {}",
                                           "the debug feed, since {} names no URL"};
  constexpr const char* kAutomatic[] = {"switched on by the administrator",
                                        "switched off by the administrator", "left to the user"};
  return fmt::format("\nUpdates\n  feed       {}\n             {}\n  automatic  {}\n", explanation.feedURL,
                     fmt::format(fmt::runtime(kSources[static_cast<std::size_t>(explanation.feedSource)]),
                                 explanation.feedMarker),
                     kAutomatic[static_cast<std::size_t>(explanation.updatesEnabled.readAs)]);
}

std::string settingLine(std::string_view key, std::string_view value, std::string_view origin) {
  const std::string line = fmt::format("  {:<23}  {:<15}  {}", key, value, origin);
  return line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
}

std::string administratorLine(const AdministratorSetting& setting) {
  if (!setting.value) return settingLine(setting.key, kNotSet, "");
  return settingLine(
      setting.key, readingText(setting),
      fmt::format("{} ({})",
                  setting.isForced ? "managed preferences" : "preferences of the user or the machine",
                  KarnoAdminSettings::applicationID()));
}

std::string settingsText(const Explanation& explanation) {
  std::string text = "\nSettings\n";
  for (const auto& [path, why] : explanation.damagedFiles)
    text += fmt::format("  {} is damaged ({}): nothing in it counts\n", path, why);
  text += administratorLine(explanation.useFileProvider) + administratorLine(explanation.updatesEnabled);
  for (const UserSetting& setting : explanation.userSettings) {
    text += settingLine(setting.key, yesOrNo(setting.readAs),
                        setting.value ? "user defaults (it.vantul.karno)" : "default");
  }
  return text;
}

// As a property list spells it.
std::string spelled(const platform::Value& value) {
  constexpr std::string_view kKinds[] = {"", "integer", "real", "string", "date", "data", "array", "dict"};
  if (const bool* const truth = value.get<bool>()) return *truth ? "<true/>" : "<false/>";
  const std::string_view kind = kKinds[value.storage().index()];
  return value.isNumber() ? fmt::format("<{0}>{1}</{0}>", kind, value.description())
                          : fmt::format("<{}>", kind);
}

}  // namespace

std::string choiceReason(ChoiceRule rule) {
  constexpr const char* kReasons[] = {"the administrator has chosen it",
                                      "the choice was settled by an earlier start", "this is the first start",
                                      "the client has run before and no choice was settled"};
  return kReasons[static_cast<std::size_t>(rule)];
}

std::string fuseText(const Explanation& explanation) {
  const auto& [fuse, macOS] = explanation.advice;
  const std::optional<std::string>& installed = explanation.system.fuse;
  const std::string there =
      !installed
          ? "no macFUSE is there"
          : (installed->empty() ? "a macFUSE without a version" : "macFUSE " + *installed) + " is there";
  if (fuse) return there + "; " + *fuse + " or later would do";
  if (macOS) return there + ", and none would do: one would on " + *macOS;
  return there + "; which would do is not known";
}

std::string readingText(const AdministratorSetting& setting) {
  if (!setting.value) return std::string(kNotSet);
  const std::string* const text = setting.value->get<std::string>();
  if (text == nullptr) return spelled(*setting.value) + " is not a text and does not count";
  return fmt::format("\"{}\": {}", *text, setting.readAs == KarnoTristate::On ? "on" : "off");
}

std::string explanationText(const Explanation& explanation, bool isUTF8) {
  return outcomeText(explanation) + checkText(explanation) + std::string(moveOutcomeText(explanation.move)) +
         choiceText(explanation) + systemText(explanation) + requirementsText(explanation, isUTF8) +
         moveText(explanation.move) + updatesText(explanation) + settingsText(explanation);
}

}  // namespace karno::karnoctl
