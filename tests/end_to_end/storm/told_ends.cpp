#include "told_ends.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace karno::test {
namespace {

constexpr std::string_view kLaunching = "Startup[LAUNCH] Launching Karno.app";
constexpr std::string_view kLaunched = "Startup[LAUNCH] Launched Karno.app (pid: ";
constexpr std::string_view kEnded = "Startup[TERMINATED] Child terminated (";
constexpr std::string_view kJudged = "Startup[TERMINATED] Embedded Karno.app terminated";
constexpr std::string_view kReason = "AppDelegate[TERMINATE] Reason: ";
constexpr std::string_view kLastLine = "AppDelegate:: Terminating";

std::size_t count(const std::vector<std::string>& log, std::string_view words) {
  return static_cast<std::size_t>(std::count_if(log.begin(), log.end(), [words](const std::string& line) {
    return line.find(words) != std::string::npos;
  }));
}

std::vector<std::string> toldEnds(const std::vector<std::string>& log) {
  std::vector<std::string> told;
  for (const std::string& line : log) {
    const std::size_t place = line.find(kEnded);
    if (place == std::string::npos) continue;
    const std::size_t begin = place + kEnded.size();
    told.push_back(line.substr(begin, line.rfind(')') - begin));
  }
  return told;
}

void compareEnds(const std::vector<std::string>& told, const std::vector<GivenEnd>& given,
                 std::vector<std::string>& broken) {
  for (std::size_t index = 0; index < std::max(told.size(), given.size()); ++index) {
    if (index >= given.size()) {
      broken.push_back(fmt::format("an end was told that nobody gave: {}", told[index]));
    } else if (index < told.size() && told[index] != given[index].text) {
      broken.push_back(
          fmt::format("end {} was told as {} instead of {}", index, told[index], given[index].text));
    } else if (index >= told.size() && !given[index].mayBeUntold) {
      broken.push_back(fmt::format("end {} was not told: {}", index, given[index].text));
    }
  }
}

// Whether the log has each of the one lines with its other, save that the process may have gone between the
// last two, once it had said that it goes: its other threads are not waited for.
bool havePairs(const std::vector<std::string>& log, std::string_view one, std::string_view other) {
  const std::size_t ones = count(log, one);
  const std::size_t others = count(log, other);
  if (ones == others) return true;
  const auto holds = [](std::string_view words) {
    return [words](const std::string& line) { return line.find(words) != std::string::npos; };
  };
  const auto lastOne = std::find_if(log.rbegin(), log.rend(), holds(one));
  return ones == others + 1 && std::find_if(lastOne, log.rend(), holds(kLastLine)) != log.rend();
}

}  // namespace

std::vector<std::string> brokenRules(const std::vector<std::string>& log, const std::vector<GivenEnd>& ends) {
  std::vector<std::string> broken;
  const std::vector<std::string> told = toldEnds(log);
  compareEnds(told, ends, broken);
  if (!havePairs(log, kEnded, kJudged)) broken.emplace_back("an end was told and not judged");
  if (!havePairs(log, kLaunching, kLaunched)) broken.emplace_back("a launch has no outcome");
  if (count(log, kReason) == 0) broken.emplace_back("the launcher ended without a reason");
  // Not always the last one: a restart may come to its launch while the process goes away.
  if (count(log, kLastLine) != 1) broken.emplace_back("the launcher did not end in good order");
  if (count(log, "*** ERROR ***") != 0) broken.emplace_back("an error was logged");
  return broken;
}

bool saysItLeaves(const std::vector<std::string>& log) { return count(log, kReason) != 0; }

std::size_t launchesIn(const std::vector<std::string>& log) { return count(log, kLaunched); }

}  // namespace karno::test
