#include <algorithm>

#include "app/karno_embedded_app.h"
#include "karnoctl/explain/explanation_text.h"
#include "karnoctl/verbs/status_text.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

Json buildOf(const std::optional<std::string>& bundle) {
  const std::string name = bundle ? lastPathComponent(*bundle) : "";
  if (name == KarnoEmbeddedApp::nameForFileProviderApp()) return "file-provider";
  if (name == KarnoEmbeddedApp::nameForFuseApp()) return "fuse";
  return {};
}

Json secondsUp(const std::optional<platform::Date>& startDate, platform::Date now) {
  return startDate ? Json(std::max(0.0, platform::secondsBetween(*startDate, now))) : Json();
}

Json clientsOf(const ObservedLauncher& observed, platform::Date now) {
  if (observed.clients.empty() && !observed.hasNoClient()) return {};
  Json clients = Json::array();
  for (const RunningClient& client : observed.clients) {
    clients.push_back({{"process", client.processIdentifier},
                       {"secondsUp", secondsUp(client.startDate, now)},
                       {"build", buildOf(client.bundlePath)},
                       {"bundle", client.bundlePath},
                       {"executable", client.executablePath}});
  }
  return clients;
}

Json launcherOf(const ObservedLauncher& observed, platform::Date now) {
  const auto& [launcher, logged, clients, children] = observed;
  const LauncherStory& story = logged.story;
  const auto rule = ruleOf(story);
  Json questions = Json::array();
  for (const auto& [question, date] : story.questions) questions.push_back(nameOf(question));
  return {{"state", nameOf(story.state())},
          {"since", orNull(story.since())},
          {"doing", story.doing().empty() ? Json() : Json(story.doing())},
          {"questions", questions},
          {"quitReason", orNull(story.quitReason)},
          {"process", launcher.processIdentifier},
          {"secondsUp", secondsUp(launcher.startDate, now)},
          {"runningVersion", orNull(story.version)},
          {"bundle", launcher.bundlePath},
          {"bundleVersion", orNull(launcher.version)},
          {"build", buildOf(story.build)},
          {"because", rule ? Json(nameOf(*rule)) : Json()},
          {"clients", clientsOf(observed, now)},
          {"log", logged.lastLines}};
}

}  // namespace

std::string statusJson(const std::vector<ObservedLauncher>& launchers, const Explanation& next,
                       platform::Date now) {
  Json json = {{"launchers", Json::array()}, {"next", nullptr}};
  for (const ObservedLauncher& launcher : launchers) json["launchers"].push_back(launcherOf(launcher, now));
  if (!launchers.empty()) {
    json["next"] = {{"build", buildOf(next.bundleName)},
                    {"because", nameOf(next.choice.rule)},
                    {"macFUSE", orNull(next.system.fuse)},
                    {"macFUSENeeded", orNull(next.advice.fuse)},
                    {"settings", settingsJson(next)}};
  }
  return jsonText(json);
}

}  // namespace karno::karnoctl
