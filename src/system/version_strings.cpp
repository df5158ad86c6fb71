#include "system/version_strings.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace karno {
namespace {

using Components = std::vector<std::string_view>;

Components componentsOf(std::string_view version) {
  Components components;
  for (std::size_t begin = 0;;) {
    const std::size_t end = version.find('.', begin);
    components.push_back(version.substr(begin, end - begin));
    if (end == std::string_view::npos) return components;
    begin = end + 1;
  }
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The platform's integer reading: what is too large for 64 bits becomes the largest or smallest value.
std::int64_t integerValue(std::string_view text) {
  using Limits = std::numeric_limits<std::int64_t>;
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);

  // Counted downwards, since the smallest value has no positive counterpart.
  std::int64_t value = 0;
  for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
    const std::int64_t digit = text.front() - '0';
    if (value < (Limits::min() + digit) / 10) return isNegative ? Limits::min() : Limits::max();
    value = value * 10 - digit;
  }
  if (isNegative) return value;
  return value == Limits::min() ? Limits::max() : -value;
}

std::int64_t valueAt(const Components& components, std::size_t index) {
  return index < components.size() ? integerValue(components[index]) : 0;
}

}  // namespace

std::int64_t compareToVersion(std::string_view version, VersionArgument other) {
  if (other && version == *other) return 0;
  const Components ours = componentsOf(version);
  const Components theirs = other ? componentsOf(*other) : Components();
  for (std::size_t i = 0; i < std::max(ours.size(), theirs.size()); ++i) {
    const std::int64_t a = valueAt(ours, i);
    const std::int64_t b = valueAt(theirs, i);
    if (a != b) return a < b ? -1 : 1;
  }
  return 0;
}

bool isOlderThanVersion(std::string_view version, VersionArgument other) {
  return compareToVersion(version, other) == -1;
}

bool isNewerThanVersion(std::string_view version, VersionArgument other) {
  return compareToVersion(version, other) == 1;
}

bool isEqualToVersion(std::string_view version, VersionArgument other) {
  return compareToVersion(version, other) == 0;
}

bool isEqualOrOlderThanVersion(std::string_view version, VersionArgument other) {
  return compareToVersion(version, other) != 1;
}

bool isEqualOrNewerThanVersion(std::string_view version, VersionArgument other) {
  return compareToVersion(version, other) != -1;
}

std::optional<std::string> getMainVersionWithIntegerCount(std::string_view version, std::int64_t count) {
  Components components = componentsOf(version);
  if (count <= 0 || static_cast<std::uint64_t>(count) > components.size()) return std::nullopt;
  components.resize(static_cast<std::size_t>(count));
  return fmt::format("{}", fmt::join(components, "."));
}

bool needsToUpdateToVersion(std::string_view version, VersionArgument other,
                            std::int64_t mainVersionIntegerCount) {
  const auto ours = getMainVersionWithIntegerCount(version, mainVersionIntegerCount);
  const auto theirs = getMainVersionWithIntegerCount(other.value_or(""), mainVersionIntegerCount);
  return ours && isEqualToVersion(*ours, theirs.value_or("")) &&
         isNewerThanVersion(other.value_or(""), version);
}

}  // namespace karno
