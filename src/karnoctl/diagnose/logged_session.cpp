#include "karnoctl/diagnose/logged_session.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <span>
#include <utility>

#include "karnoctl/log/log_date.h"

namespace karno::karnoctl {
namespace {

constexpr std::chrono::seconds kClockTolerance{60};

constexpr std::string_view kOpensAnew = "Startup[RESTART] Karno has quit - restarting wrapper";
constexpr std::string_view kUpdatesDisabled = "Sparkle[CONFIG] Updates disabled by admin";
constexpr std::string_view kNoFuse = "Fuse[SYSTEM] Fuse is not installed";
constexpr std::string_view kLaunchOfClient = "Startup[LAUNCH] Launching ";
constexpr std::string_view kStartOfClient = "Startup[LAUNCH] Launched ";
constexpr std::string_view kEndOfClient = "Startup[TERMINATED] Child terminated ";

// What the launcher says of its system, in quotes.
constexpr std::pair<std::string_view, std::optional<std::string> SystemFacts::*> kSystem[] = {
    {"Fuse[SYSTEM] CPU: '", &SystemFacts::cpu},
    {"Fuse[SYSTEM] O/S Version: '", &SystemFacts::macOS},
    {"Fuse[SYSTEM] Fuse Version: '", &SystemFacts::fuse},
};

// Lines of which the second never comes without the first.
constexpr std::pair<std::string_view, std::string_view> kPairs[] = {
    {"Karno Log Started ", "Karno Version: "},
    {"Karno Version: ", "Parent Process: "},
    {kLaunchOfClient, kStartOfClient},
    {kStartOfClient, "Main: Started Karno successfully"},
    {kEndOfClient, "Startup[TERMINATED] Embedded Karno.app terminated"},
};

// How the client says that it goes.
constexpr std::string_view kFarewells[] = {
    "Notify[LISTEN] Received 'user-selected-quit'", "Notify[LISTEN] Received 'app-is-terminating",
    "Notify[LISTEN] Received 'app-needs-restart'", "Notify[LISTEN] Received 'restart-wrapper",
    "Sparkle[UPDATE] Relaunching app"};

constexpr std::string_view kTurnsOfUpdate[] = {"Sparkle[UPDATE] ", "Sparkle[ABORT] ",
                                               "Sparkle[CHECK] Checking for updates"};

// After these turns a session of the updater ends as it should.
constexpr std::string_view kGoodEnds[] = {
    "Sparkle[UPDATE] User decided to skip", "Sparkle[UPDATE] User decided to dis",
    "Sparkle[UPDATE] User decided to 'un",  "Sparkle[UPDATE] No update found",
    "Sparkle[UPDATE] Checking Fuse",        "Sparkle[UPDATE] User cancelled"};

bool beginsWithOneOf(std::string_view message, std::span<const std::string_view> texts) {
  return std::ranges::any_of(texts, [&](auto one) { return !one.empty() && message.starts_with(one); });
}

}  // namespace

void LoggedSession::take(std::string_view text, const LogLine& line) {
  const std::string_view message = line.message;
  const std::size_t questions = story.questions.size();
  story.take(line);
  if (story.questions.size() > questions) questionLine = text;
  lastLine = text;
  const std::optional<platform::Date> date = momentOfLogDate(line.date);
  if (date && lastDate && *date < *lastDate - kClockTolerance)
    signs[&causeOf("clock-set-back")] = {std::string(text)};
  if (!date) hasOddDates = true;
  lastDate = date;
  takeSigns(text, message);
  takeClient(text, message);
  takePairs(text, message);
  for (const auto& [words, fact] : kSystem) {
    if (message.starts_with(words) && message.ends_with('\'') && message.size() > words.size())
      system.*fact = message.substr(words.size(), message.size() - words.size() - 1);
  }
  if (message.starts_with(kNoFuse)) system.fuse.reset();
  if (message.starts_with(kOpensAnew)) isHandingOver = true;
  if (message == kUpdatesDisabled) areUpdatesDisabled = true;
  if (beginsWithOneOf(message, kTurnsOfUpdate)) hasUpdateEndedWell = beginsWithOneOf(message, kGoodEnds);
}

void LoggedSession::takeSigns(std::string_view text, std::string_view message) {
  for (const Cause& cause : causes()) {
    if (beginsWithOneOf(message, cause.cures)) signs.erase(&cause);
    if (!beginsWithOneOf(message, cause.signs)) continue;
    if (cause.name == "update-failed" && hasUpdateEndedWell) continue;
    if (cause.name == "client-gone-for-no-update" && story.quitReason) continue;  // so nothing stays
    std::vector<std::string>& lines = signs[&cause];
    if (lines.size() == 2) lines.pop_back();
    lines.emplace_back(text);
  }
}

void LoggedSession::takeClient(std::string_view text, std::string_view message) {
  const bool isLaunch = message.starts_with(kLaunchOfClient);
  if (isLaunch) clientEnd.clear();
  // The launch is told after it was made: the client may have ended by then.
  if (isLaunch || (clientEnd.empty() && message.starts_with(kStartOfClient))) launched_ = lastDate;
  isClientExpectedToGo = !isLaunch && (isClientExpectedToGo || beginsWithOneOf(message, kFarewells));
  if (!message.starts_with(kEndOfClient)) return;
  const auto status = numberAfter(message, "(status:");
  const bool wasKilled = numberAfter(message, "reason:") == 2;
  clientEnd = status ? (wasKilled ? "signal " : "status ") + std::to_string(*status) : "";
  clientSeconds.reset();
  if (launched_ && lastDate >= launched_) clientSeconds = platform::secondsBetween(*launched_, *lastDate);
  endLine = text;
}

void LoggedSession::takePairs(std::string_view text, std::string_view message) {
  for (std::size_t i = 0; i < std::size(kPairs); ++i) {
    if (message.starts_with(kPairs[i].first)) ++pairs_.at(i);
    const bool isUnheralded = message.starts_with(kPairs[i].second) && --pairs_.at(i) < 0;
    // Where the log does not reach back to the start, the other may stand before it.
    if (isUnheralded && story.beginning) signs.insert({&causeOf("lines-missing"), {std::string(text)}});
  }
}

std::vector<std::string_view> linesOfSessions() {
  std::vector<std::string_view> lines{kNoFuse, kOpensAnew, kUpdatesDisabled};
  for (const auto& [words, fact] : kSystem) lines.push_back(words);
  for (const auto& [first, second] : kPairs) lines.insert(lines.end(), {first, second});
  lines.insert(lines.end(), std::begin(kFarewells), std::end(kFarewells));
  lines.insert(lines.end(), std::begin(kTurnsOfUpdate), std::end(kTurnsOfUpdate));
  lines.insert(lines.end(), std::begin(kGoodEnds), std::end(kGoodEnds));
  return lines;
}

}  // namespace karno::karnoctl
