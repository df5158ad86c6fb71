#include "karnoctl/verbs/duration_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace karno::karnoctl {

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

}  // namespace karno::karnoctl
