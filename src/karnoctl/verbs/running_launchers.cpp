#include "karnoctl/verbs/running_launchers.h"

#include <memory>
#include <string_view>

namespace karno::karnoctl {
namespace {

using platform::RunningProcess;

constexpr std::string_view kLauncherIdentifier = "it.vantul.KarnoWrapper";
constexpr std::string_view kPrograms = "/Contents/MacOS/";

std::optional<std::string> textUnder(std::string_view key, const platform::Bundle& bundle) {
  const auto value = bundle.objectForInfoDictionaryKey(key);
  const std::string* const text = value ? value->get<std::string>() : nullptr;
  return text == nullptr ? std::nullopt : std::optional(*text);
}

// By its program, or by the log.
std::optional<RunningClient> clientIn(const RunningProcess& child, const ObservedLauncher& observed) {
  const std::string helpers = observed.launcher.bundlePath + "/Contents/Helpers/";
  const LauncherStory& story = observed.logged.story;
  std::optional<std::string> bundle = bundlePathOf(child.executablePath);
  if (!bundle || !bundle->starts_with(helpers)) {
    if (story.client != child.processIdentifier) return std::nullopt;
    bundle = helpers + story.build.value_or("");
  }
  return RunningClient{.processIdentifier = child.processIdentifier,
                       .bundlePath = *bundle,
                       .executablePath = child.executablePath,
                       .startDate = child.startDate};
}

std::vector<RunningLauncher> launchersAmong(const std::vector<RunningProcess>& processes,
                                            const platform::Platform& platform) {
  std::vector<RunningLauncher> launchers;
  for (const RunningProcess& process : processes) {
    const std::optional<std::string> path = bundlePathOf(process.executablePath);
    const auto bundle = path ? platform.bundles.bundleAtPath(*path) : nullptr;
    if (!bundle || bundle->bundleIdentifier() != kLauncherIdentifier) continue;
    // Beside the launcher its bundle holds tools, such as this one.
    if (bundle->executablePath() != process.executablePath) continue;
    launchers.push_back({.processIdentifier = process.processIdentifier,
                         .bundlePath = *path,
                         .version = textUnder("CFBundleShortVersionString", *bundle),
                         .startDate = process.startDate});
  }
  return launchers;
}

}  // namespace

std::optional<std::string> bundlePathOf(const std::string& program) {
  const std::size_t programs = program.rfind(kPrograms);
  if (programs == std::string::npos) return std::nullopt;
  if (program.find('/', programs + kPrograms.size()) != std::string::npos) return std::nullopt;
  return program.substr(0, programs);
}

bool ObservedLauncher::hasNoClient() const {
  return clients.empty() && (otherChildren.empty() || !logged.story.isEmpty());
}

std::vector<RunningLauncher> runningLaunchers(const platform::Platform& platform) {
  return launchersAmong(platform.processList.runningProcesses(), platform);
}

std::vector<ObservedLauncher> observedLaunchers(const platform::Platform& platform) {
  const std::vector<RunningProcess> processes = platform.processList.runningProcesses();
  std::vector<ObservedLauncher> observed;
  for (const RunningLauncher& launcher : launchersAmong(processes, platform)) {
    ObservedLauncher& one = observed.emplace_back();
    one.launcher = launcher;
    one.logged = loggedProcess(platform.fileReading, launcher.processIdentifier, launcher.startDate);
    for (const RunningProcess& process : processes) {
      if (process.parentProcessIdentifier != launcher.processIdentifier) continue;
      if (const auto client = clientIn(process, one)) {
        one.clients.push_back(*client);
      } else {
        one.otherChildren.push_back(process);
      }
    }
  }
  return observed;
}

}  // namespace karno::karnoctl
