#include "karnoctl/verbs/running_launchers.h"

#include <memory>
#include <string_view>

namespace karno::karnoctl {
namespace {

using platform::RunningProcess;

constexpr std::string_view kLauncherIdentifier = "it.vantul.KarnoWrapper";
constexpr std::string_view kPrograms = "/Contents/MacOS/";

// The folder X.app of an executable X.app/Contents/MacOS/NAME.
std::optional<std::string> bundlePathOf(const std::string& executable) {
  const std::size_t programs = executable.rfind(kPrograms);
  if (programs == std::string::npos) return std::nullopt;
  if (executable.find('/', programs + kPrograms.size()) != std::string::npos) return std::nullopt;
  return executable.substr(0, programs);
}

std::optional<std::string> textUnder(std::string_view key, const platform::Bundle& bundle) {
  const auto value = bundle.objectForInfoDictionaryKey(key);
  const std::string* const text = value ? value->get<std::string>() : nullptr;
  return text == nullptr ? std::nullopt : std::optional(*text);
}

std::vector<RunningClient> clientsOf(const RunningProcess& launcher, const std::string& launcherBundle,
                                     const std::vector<RunningProcess>& processes) {
  std::vector<RunningClient> clients;
  for (const RunningProcess& process : processes) {
    if (process.parentProcessIdentifier != launcher.processIdentifier) continue;
    const std::optional<std::string> bundle = bundlePathOf(process.executablePath);
    if (!bundle || !bundle->starts_with(launcherBundle + "/Contents/Helpers/")) continue;
    clients.push_back({.processIdentifier = process.processIdentifier,
                       .bundlePath = *bundle,
                       .startDate = process.startDate});
  }
  return clients;
}

}  // namespace

std::vector<RunningLauncher> runningLaunchers(const platform::Platform& platform) {
  const std::vector<RunningProcess> processes = platform.processList.runningProcesses();
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
                         .startDate = process.startDate,
                         .clients = clientsOf(process, *path, processes)});
  }
  return launchers;
}

}  // namespace karno::karnoctl
