#include "karnoctl/verbs/status_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "app/karno_embedded_app.h"
#include "karnoctl/explain/explanation_text.h"
#include "karnoctl/log/log_printer.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

// "2026-11-21 09:12:41" of a date with milliseconds and zone.
constexpr std::size_t kDateToTheSecond = 19;

std::string upText(const std::optional<platform::Date>& startDate, platform::Date now) {
  return startDate ? ", up " + durationText(platform::secondsBetween(*startDate, now)) : "";
}

std::string buildText(const std::string& bundlePath) {
  const std::string name = lastPathComponent(bundlePath);
  if (name == KarnoEmbeddedApp::nameForFileProviderApp()) return "the File Provider build";
  if (name == KarnoEmbeddedApp::nameForFuseApp()) return "the FUSE build";
  return name.empty() ? "of an unknown build" : name;
}

std::string line(std::string_view name, std::string_view text) {
  return fmt::format("  {:<6}  {}\n", name, withoutControlCharacters(text));
}

std::string clientText(const RunningClient& client, platform::Date now) {
  const bool isOwnProgram = client.executablePath.starts_with(client.bundlePath + "/");
  return line("client", fmt::format("{}, process {}{}", buildText(client.bundlePath),
                                    client.processIdentifier, upText(client.startDate, now))) +
         line("", client.bundlePath) + (isOwnProgram ? "" : line("", "run by " + client.executablePath));
}

std::string clientsText(const ObservedLauncher& observed, platform::Date now) {
  if (observed.hasNoClient()) return line("client", "none runs");
  std::string text;
  for (const RunningClient& client : observed.clients) text += clientText(client, now);
  if (!text.empty()) return text;
  text = line("client", "not known: the log does not name it among the launcher's children");
  for (const platform::RunningProcess& child : observed.otherChildren)
    text += line("", fmt::format("process {}, {}", child.processIdentifier, child.executablePath));
  return text;
}

std::string stateLine(const LauncherStory& story, const Explanation& next) {
  const auto since = story.since();
  std::string text =
      line("state", stateText(story) + (since ? ", since " + since->substr(0, kDateToTheSecond) : ""));
  const bool isAboutFuse =
      story.state() == LauncherState::WaitsForFuse || story.questions.contains(Question::InstallFuse);
  return isAboutFuse ? text + line("", fuseText(next)) : text;
}

// Why it runs the build that it runs.
std::string buildLine(const LauncherStory& story) {
  if (!story.build) return {};
  const auto rule = ruleOf(story);
  const bool wasFirst = rule == ChoiceRule::FirstStartup;
  return line("build", buildText(*story.build) + ": " +
                           (!rule      ? "the log does not tell why"
                            : wasFirst ? "it was the first start"
                                       : choiceReason(*rule)));
}

std::string nextLine(const LauncherStory& story, const Explanation& next) {
  if (!story.build || *story.build == next.bundleName) return {};
  return line("next", fmt::format("the next start runs {}: {}", buildText(next.bundleName),
                                  choiceReason(next.choice.rule)));
}

std::string launcherText(const ObservedLauncher& observed, const Explanation& next, platform::Date now) {
  const RunningLauncher& launcher = observed.launcher;
  const LauncherStory& story = observed.logged.story;
  const auto version = story.version ? story.version : launcher.version;
  const bool isReplaced = launcher.version && version != launcher.version;
  std::string text =
      fmt::format("Karno {} runs, process {}{}\n",
                  withoutControlCharacters(version.value_or("(version unknown)")), launcher.processIdentifier,
                  upText(launcher.startDate, now)) +
      stateLine(story, next) +
      line("bundle", launcher.bundlePath + (isReplaced ? ", now of version " + *launcher.version : "")) +
      clientsText(observed, now) + buildLine(story) + nextLine(story, next);
  for (const std::string& logged : observed.logged.lastLines)
    text += line(&logged == &observed.logged.lastLines.front() ? "log" : "", logged);
  return text;
}

}  // namespace

std::string durationText(double seconds) {
  constexpr double kLongest = 1e12;  // seconds; keeps the conversion defined
  const auto whole = static_cast<std::int64_t>(std::clamp(seconds, 0.0, kLongest));
  const std::int64_t minutes = whole / 60;
  const std::int64_t hours = minutes / 60;
  if (minutes == 0) return fmt::format("{} s", whole);
  if (hours == 0) return fmt::format("{} min", minutes);
  if (hours < 24) return fmt::format("{} h {} min", hours, minutes % 60);
  return fmt::format("{} d {} h", hours / 24, hours % 24);
}

std::optional<ChoiceRule> ruleOf(const LauncherStory& story) {
  if (story.buildReason == "admin") return ChoiceRule::Administrator;
  if (story.buildReason == "verified") return ChoiceRule::SettledBefore;
  if (story.buildReason == "first startup") return ChoiceRule::FirstStartup;
  if (story.buildReason == "already using Fuse") return ChoiceRule::AlreadyUsingFuse;
  return std::nullopt;
}

std::string stateText(const LauncherStory& story) {
  struct Text {
    std::string_view name;
    std::string_view joint;  // to what it is at
  };
  // In the order of LauncherState.
  constexpr Text kTexts[] = {{"not known: the log tells nothing of it", ""},
                             {"starts", ": "},
                             {"waits for macFUSE", ""},
                             {"asks the user", " "},
                             {"runs", ""},
                             {"updates", ": "},
                             {"quits", ": "}};
  const Text& text = kTexts[static_cast<std::size_t>(story.state())];
  const std::string doing = story.doing();
  return std::string(text.name).append(doing.empty() ? "" : text.joint).append(doing);
}

std::string statusText(const std::vector<ObservedLauncher>& launchers, const Explanation& next,
                       platform::Date now) {
  if (launchers.empty()) return "No Karno launcher runs.\n";
  std::string text;
  for (const ObservedLauncher& launcher : launchers)
    text += (text.empty() ? "" : "\n") + launcherText(launcher, next, now);
  return text;
}

}  // namespace karno::karnoctl
