#include "karnoctl/log/log_printer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <ostream>

#include "karnoctl/log/log_line.h"
#include "platform/text/one_line.h"
#include "platform/text/utf8.h"

namespace karno::karnoctl {
namespace {

// A line that never ends is printed in pieces of this size.
constexpr std::size_t kWaitingBytesMax = 1U << 20U;

struct LevelColour {
  std::string_view level;
  std::string_view colour;  // as the parameters of "select graphic rendition"
};

constexpr std::array<LevelColour, 7> kColours{{{"VERBOSE", "2"},
                                               {"DEBUG", "2"},
                                               {"INFO", "32"},
                                               {"WARN", "33"},
                                               {"*** ERROR ***", "1;31"},
                                               {"NET", "36"},
                                               {"STARTUP", "1"}}};

}  // namespace

bool isLogLevel(std::string_view level) {
  return std::ranges::find(kColours, level, &LevelColour::level) != kColours.end();
}

std::string colouredLogLine(std::string_view line) {
  const std::optional<LogLine> parts = logLineIn(line);
  const auto known = parts ? std::ranges::find(kColours, parts->level, &LevelColour::level) : kColours.end();
  if (known == kColours.end()) return std::string(line);

  const auto begin = static_cast<std::size_t>(parts->level.data() - line.data());
  std::string coloured(line.substr(0, begin));
  coloured.append("\033[").append(known->colour).append("m").append(known->level).append("\033[0m");
  return coloured.append(line.substr(begin + known->level.size()));
}

std::string withoutControlCharacters(std::string_view line) {
  std::string visible;
  visible.reserve(line.size());
  while (!line.empty()) {
    const char32_t character = platform::takeCharacter(line);
    if (character == '\t') {
      visible += '\t';
    } else if (character < 0x20 || character == 0x7F) {
      visible += '^';
      visible += static_cast<char>(character ^ 0x40U);
    } else {
      platform::appendVisibly(visible, character);
    }
  }
  return visible;
}

void LogPrinter::print(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t newline = bytes.find('\n');
    waiting_.append(bytes.substr(0, newline));
    if (newline == std::string_view::npos) break;
    printLine(waiting_);
    waiting_.clear();
    bytes.remove_prefix(newline + 1);
  }
  if (waiting_.size() > kWaitingBytesMax) endLine();
}

void LogPrinter::endLine() {
  if (waiting_.empty()) return;
  printLine(waiting_);
  waiting_.clear();
}

void LogPrinter::printLine(std::string_view line) {
  const std::string text = printing_.toTerminal ? withoutControlCharacters(line) : std::string(line);
  out_ << (printing_.colours ? colouredLogLine(text) : text) << '\n';
}

}  // namespace karno::karnoctl
