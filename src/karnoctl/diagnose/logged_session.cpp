#include "karnoctl/diagnose/logged_session.h"

#include <algorithm>
#include <charconv>
#include <chrono>

#include "karnoctl/log/log_date.h"

namespace karno::karnoctl {
namespace {

constexpr std::chrono::seconds kClockTolerance{60};

constexpr std::string_view kProcessor = "Fuse[SYSTEM] CPU: '";
constexpr std::string_view kSystem = "Fuse[SYSTEM] O/S Version: '";
constexpr std::string_view kFuse = "Fuse[SYSTEM] Fuse Version: '";
constexpr std::string_view kNoFuse = "Fuse[SYSTEM] Fuse is not installed";
constexpr std::string_view kLaunchOfClient = "Startup[LAUNCH] Launching ";
constexpr std::string_view kStartOfClient = "Startup[LAUNCH] Launched ";
constexpr std::string_view kEndOfClient = "Startup[TERMINATED] Child terminated ";
constexpr std::string_view kOpensAnew = "Startup[RESTART] Karno has quit - restarting wrapper";
constexpr std::string_view kUpdatesDisabled = "Sparkle[CONFIG] Updates disabled by admin";
constexpr std::string_view kLastMessage = "AppDelegate:: Terminating";

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

// After these a session of the updater ends as it should.
constexpr std::string_view kGoodEnds[] = {
    "Sparkle[UPDATE] User decided to skip", "Sparkle[UPDATE] User decided to dis",
    "Sparkle[UPDATE] User decided to 'un",  "Sparkle[UPDATE] No update found",
    "Sparkle[UPDATE] Checking Fuse",        "Sparkle[UPDATE] User cancelled"};

constexpr std::string_view kTurnsOfUpdate[] = {"Sparkle[UPDATE] ", "Sparkle[ABORT] ",
                                               "Sparkle[CHECK] Checking for updates"};

bool beginsWithOneOf(std::string_view message, std::span<const std::string_view> texts) {
  return std::ranges::any_of(texts,
                             [&](std::string_view one) { return !one.empty() && message.starts_with(one); });
}

std::optional<int> numberIn(std::string_view text, std::string_view before) {
  const std::size_t place = text.find(before);
  if (place == std::string_view::npos) return std::nullopt;
  int number = 0;
  const char* const begin = text.data() + place + before.size();
  if (std::from_chars(begin, text.data() + text.size(), number).ec != std::errc()) return std::nullopt;
  return number;
}

// What stands between the quotes behind those words.
std::optional<std::string> quotedAfter(std::string_view message, std::string_view words) {
  if (!message.starts_with(words) || !message.ends_with('\'') || message.size() <= words.size())
    return std::nullopt;
  return std::string(message.substr(words.size(), message.size() - words.size() - 1));
}

}  // namespace

void LoggedSession::take(std::string_view text, const LogLine& line) {
  const std::size_t questions = story.questions.size();
  story.take(line);
  lastLine = text;
  if (story.questions.size() > questions) questionLine = text;
  takeDate(text, line.date);
  takeFacts(line.message);
  takeClient(text, line.message);
  takePairs(text, line.message);
  takeSigns(text, line.message);
}

void LoggedSession::takeSigns(std::string_view text, std::string_view message) {
  const bool hasEndedWell = beginsWithOneOf(lastUpdateLine_, kGoodEnds);
  if (beginsWithOneOf(message, kTurnsOfUpdate)) lastUpdateLine_ = message;
  for (std::size_t i = 0; i < causes().size(); ++i) {
    const Cause& cause = causes()[i];
    if (beginsWithOneOf(message, cause.cures)) signs.erase(i);
    if (!beginsWithOneOf(message, cause.signs)) continue;
    if (cause.name == "update-failed" && hasEndedWell) continue;
    if (cause.name == "client-gone-for-no-update" && story.quitReason) continue;  // so nothing stays
    std::vector<std::string>& lines = signs[i];
    if (lines.size() == 2) lines.pop_back();
    lines.emplace_back(text);
  }
}

void LoggedSession::takeDate(std::string_view text, std::string_view dateText) {
  const std::optional<platform::Date> date = momentOfLogDate(dateText);
  if (date && lastDate && *date < *lastDate - kClockTolerance) lineOfSetClock = text;
  if (!date) hasForeignDates = true;
  lastDate = date;
}

void LoggedSession::takeFacts(std::string_view message) {
  if (const auto cpu = quotedAfter(message, kProcessor)) system.cpu = cpu;
  if (const auto macOS = quotedAfter(message, kSystem)) system.macOS = macOS;
  if (const auto fuse = quotedAfter(message, kFuse)) system.fuse = fuse;
  if (message.starts_with(kNoFuse)) system.fuse.reset();
  if (beginsWithOneOf(message, kFarewells)) isClientExpectedToGo = true;
  if (message.starts_with(kOpensAnew)) isHandingOver = true;
  if (message == kUpdatesDisabled) areUpdatesDisabled = true;
  if (message == kLastMessage) hasSaidFarewell = true;
}

void LoggedSession::takeClient(std::string_view text, std::string_view message) {
  // The launch is told after it was made: the client may have ended by then.
  if (message.starts_with(kStartOfClient) && !clientStatus) launchDate_ = lastDate;
  if (message.starts_with(kLaunchOfClient)) {
    launchDate_ = lastDate;
    clientStatus.reset();
    clientSeconds.reset();
    isClientExpectedToGo = false;
  }
  if (!message.starts_with(kEndOfClient)) return;
  endLine = text;
  clientStatus = numberIn(message, "(status:");
  clientWasKilled = numberIn(message, "reason:") == 2;
  if (lastDate && launchDate_ && *lastDate >= *launchDate_)
    clientSeconds = platform::secondsBetween(*launchDate_, *lastDate);
}

void LoggedSession::takePairs(std::string_view text, std::string_view message) {
  for (std::size_t i = 0; i < std::size(kPairs); ++i) {
    if (message.starts_with(kPairs[i].first)) ++pairs_.at(i);
    const bool isUnheralded = message.starts_with(kPairs[i].second) && --pairs_.at(i) < 0;
    // Where the log does not reach back to the start, the other may stand before it.
    if (isUnheralded && story.beginning && lineAfterGap.empty()) lineAfterGap = text;
  }
}

std::vector<std::string_view> linesOfSessions() {
  std::vector<std::string_view> lines{kUpdatesDisabled, kProcessor,     kSystem,      kFuse,     kNoFuse,
                                      kLastMessage,     kStartOfClient, kEndOfClient, kOpensAnew};
  for (const auto& [first, second] : kPairs) lines.insert(lines.end(), {first, second});
  lines.insert(lines.end(), std::begin(kFarewells), std::end(kFarewells));
  lines.insert(lines.end(), std::begin(kGoodEnds), std::end(kGoodEnds));
  lines.insert(lines.end(), std::begin(kTurnsOfUpdate), std::end(kTurnsOfUpdate));
  return lines;
}

}  // namespace karno::karnoctl
