#include "platform/linux/machine/system_version.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>

#include "platform/linux/files/property_list_file.h"
#include "platform/posix/console_line.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

using Version = std::array<int, 3>;

struct AppKitRelease {
  Version macOS;
  double number;
};

// In ascending order.
constexpr AppKitRelease kAppKitReleases[] = {{{10, 5, 0}, 949},   {{10, 6, 0}, 1038},  {{10, 7, 0}, 1138},
                                             {{10, 8, 0}, 1187},  {{10, 9, 0}, 1265},  {{10, 10, 0}, 1343},
                                             {{10, 11, 0}, 1404}, {{10, 12, 0}, 1504}, {{10, 13, 0}, 1561},
                                             {{10, 14, 0}, 1671}, {{10, 15, 0}, 1894}};

// "14", "14.5" and "14.5.1" are versions; anything before, between or after the numbers makes it none.
std::optional<Version> versionFromText(std::string_view text) {
  Version version = {};
  const char* position = text.data();
  const char* const end = text.data() + text.size();
  for (int& part : version) {
    const auto [next, error] = std::from_chars(position, end, part);
    if (error != std::errc() || part < 0) return std::nullopt;
    if (next == end) return version;
    if (*next != '.') return std::nullopt;
    position = next + 1;
  }
  return std::nullopt;
}

std::optional<Version> versionFromFile(const std::string& path) {
  const Result<Value::Dictionary> values = readDictionary(path);
  if (!values) return std::nullopt;
  const auto* version = entryOf<std::string>(values.value(), "ProductVersion");
  return version == nullptr ? std::nullopt : versionFromText(*version);
}

}  // namespace

std::optional<Version> LinuxSystemVersion::version() const {
  const std::string path = systemPath("/System/Library/CoreServices/SystemVersion.plist");
  std::optional<Version> version = versionFromFile(path);
  if (!version) {
    std::call_once(reported_, [&] { writeConsoleLine("SystemVersion: no ProductVersion in " + path); });
  }
  return version;
}

bool LinuxSystemVersion::isAtLeast(int major, int minor, int patch) const {
  const std::optional<Version> running = version();
  return running && *running >= Version{major, minor, patch};
}

double LinuxSystemVersion::appKitVersionNumber() const {
  const std::optional<Version> running = version();
  double number = 0;
  if (!running) return number;
  for (const AppKitRelease& release : kAppKitReleases) {
    if (*running >= release.macOS) number = release.number;
  }
  return number;
}

}  // namespace karno::platform
