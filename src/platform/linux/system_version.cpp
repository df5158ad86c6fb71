#include "platform/linux/system_version.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>

#include "platform/linux/property_list_file.h"
#include "platform/posix/console_line.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

using Version = std::array<int, 3>;

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

std::optional<Version> versionFromFile(const PropertyLists& propertyLists, const std::string& path) {
  const Result<Value::Dictionary> values = readDictionary(propertyLists, path);
  if (!values) return std::nullopt;
  const auto entry = values.value().find("ProductVersion");
  if (entry == values.value().end() || !entry->second.isString()) return std::nullopt;
  return versionFromText(*entry->second.get<std::string>());
}

}  // namespace

bool LinuxSystemVersion::isAtLeast(int major, int minor, int patch) const {
  const std::string path = systemPath("/System/Library/CoreServices/SystemVersion.plist");
  const std::optional<Version> version = versionFromFile(propertyLists_, path);
  if (!version) {
    std::call_once(reported_, [&] { writeConsoleLine("SystemVersion: no ProductVersion in " + path); });
    return false;
  }
  return *version >= Version{major, minor, patch};
}

}  // namespace karno::platform
