#include "karnoctl/log/log_line.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace karno::karnoctl {

std::optional<LogLine> logLineIn(std::string_view line) {
  constexpr std::size_t kDateBytesMax = 64;
  const std::size_t dateEnd = line.substr(0, kDateBytesMax).find(" (");
  if (dateEnd == std::string_view::npos) return std::nullopt;
  LogLine found{.date = line.substr(0, dateEnd), .level = {}, .message = {}};

  const char* const end = line.data() + line.size();
  const auto number = std::from_chars(line.data() + dateEnd + 2, end, found.processIdentifier);
  const std::string_view rest(number.ptr, static_cast<std::size_t>(end - number.ptr));
  const std::size_t levelEnd = rest.find("] ");
  if (number.ec != std::errc() || !rest.starts_with(") [") || levelEnd == std::string_view::npos)
    return std::nullopt;
  found.level = rest.substr(3, levelEnd - 3);
  found.message = rest.substr(levelEnd + 2);
  return found;
}

std::optional<std::int32_t> numberAfter(std::string_view text, std::string_view words) {
  const std::size_t place = text.find(words);
  if (place == std::string_view::npos) return std::nullopt;
  std::int32_t number = 0;
  const auto read = std::from_chars(text.data() + place + words.size(), text.data() + text.size(), number);
  return read.ec == std::errc() ? std::optional(number) : std::nullopt;
}

}  // namespace karno::karnoctl
