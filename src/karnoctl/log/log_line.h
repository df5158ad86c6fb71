#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace karno::karnoctl {

// A line of the launcher's log, taken apart. The parts live as long as the line.
struct LogLine {
  std::string_view date;  // with milliseconds and zone, as the launcher's locale writes it
  std::int32_t processIdentifier = 0;
  std::string_view level;
  std::string_view message;
};

// Absent for what no launcher has begun: a further line of a message, one that was cut, and what is no text.
std::optional<LogLine> logLineIn(std::string_view line);

// The number behind those words where they first stand; absent without them, or where it has no digits.
std::optional<std::int32_t> numberAfter(std::string_view text, std::string_view words);

}  // namespace karno::karnoctl
