#include "karnoctl/verbs/status_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "app/karno_embedded_app.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

std::string upText(const std::optional<platform::Date>& startDate, platform::Date now) {
  return startDate ? ", up " + durationText(platform::secondsBetween(*startDate, now)) : "";
}

std::string buildText(const std::string& bundlePath) {
  const std::string name = lastPathComponent(bundlePath);
  if (name == KarnoEmbeddedApp::nameForFileProviderApp()) return "the File Provider build";
  if (name == KarnoEmbeddedApp::nameForFuseApp()) return "the FUSE build";
  return name;
}

std::string clientText(const RunningClient& client, platform::Date now) {
  return fmt::format("  client  {}, process {}{}\n          {}\n", buildText(client.bundlePath),
                     client.processIdentifier, upText(client.startDate, now), client.bundlePath);
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

std::string statusText(const std::vector<RunningLauncher>& launchers, platform::Date now) {
  if (launchers.empty()) return "No Karno launcher runs.\n";
  std::string text;
  for (const RunningLauncher& launcher : launchers) {
    if (!text.empty()) text += '\n';
    text += fmt::format("Karno {} runs, process {}{}\n  bundle  {}\n",
                        launcher.version.value_or("(version unknown)"), launcher.processIdentifier,
                        upText(launcher.startDate, now), launcher.bundlePath);
    for (const RunningClient& client : launcher.clients) text += clientText(client, now);
    if (launcher.clients.empty()) text += "  client  none runs\n";
  }
  return text;
}

}  // namespace karno::karnoctl
