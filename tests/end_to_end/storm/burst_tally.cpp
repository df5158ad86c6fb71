#include "burst_tally.h"

#include <cstdlib>
#include <sstream>

#include "ipc/wrapper_protocol.h"

namespace karno::test {
namespace {

constexpr std::string_view kReceived = "Notify[LISTEN] Received '";

// The text of a line after its date, process and level.
std::string_view textOfLine(const std::string& line) {
  const std::size_t place = line.find("] ");
  return place == std::string::npos ? std::string_view() : std::string_view(line).substr(place + 2);
}

std::string consequenceOf(const std::string& message) {
  if (message == kEnableAutomaticUpdates) return "Sparkle[CONFIG] Check updates automatically=1";
  return "Notify[LISTEN] Received an unknown notification '" + message + "'";
}

}  // namespace

BurstTally tallyOf(const std::string& console) {
  BurstTally tally;
  std::istringstream lines(console);
  for (std::string line; std::getline(lines, line);) {
    const std::string_view text = textOfLine(line);
    if (!text.starts_with(kReceived)) continue;
    const std::string message(text.substr(kReceived.size(), text.size() - kReceived.size() - 1));
    if (message == kUserSelectedQuit) break;
    const std::size_t dash = message.rfind('-');
    if (message == kEnableAutomaticUpdates) {
      ++tally.switchedOn;
    } else if (dash != std::string::npos) {
      tally.numbers[message.substr(0, dash)].push_back(std::atoi(message.c_str() + dash + 1));
    }
    std::getline(lines, line);
    if (textOfLine(line) != consequenceOf(message)) ++tally.withoutConsequence;
  }
  return tally;
}

}  // namespace karno::test
