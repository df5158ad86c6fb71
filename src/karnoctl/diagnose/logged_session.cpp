#include "karnoctl/diagnose/logged_session.h"

#include <algorithm>
#include <charconv>
#include <chrono>

namespace karno::karnoctl {
namespace {

constexpr double kClockToleranceSeconds = 60;

// Lines of which the second never comes without the first.
constexpr std::pair<std::string_view, std::string_view> kPairs[] = {
    {"Karno Log Started ", "Karno Version: "},
    {"Karno Version: ", "Parent Process: "},
    {"Startup[LAUNCH] Launching ", "Startup[LAUNCH] Launched "},
    {"Startup[LAUNCH] Launched ", "Main: Started Karno successfully"},
    {"Startup[TERMINATED] Child terminated ", "Startup[TERMINATED] Embedded Karno.app terminated"},
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

std::optional<double> secondsOfLogDate(std::string_view date) {
  // 2024-03-05 14:07:09:042+0100
  constexpr std::string_view kShape = "dddd-dd-dd dd:dd:dd:ddd+dddd";
  if (date.size() != kShape.size()) return std::nullopt;
  std::array<int, 10> numbers{};  // year, month, day, hour, minute, second, milliseconds, zone
  std::size_t field = 0;
  for (std::size_t i = 0; i < date.size(); ++i) {
    const bool isDigit = date[i] >= '0' && date[i] <= '9';
    if (isDigit != (kShape[i] == 'd')) return std::nullopt;
    if (isDigit) numbers.at(field) = numbers.at(field) * 10 + (date[i] - '0');
    if (!isDigit) ++field;
  }
  using namespace std::chrono;
  const year_month_day day(year(numbers[0]), month(static_cast<unsigned>(numbers[1])),
                           std::chrono::day(static_cast<unsigned>(numbers[2])));
  if (!day.ok()) return std::nullopt;
  const int zone = (numbers[7] / 100 * 60 + numbers[7] % 100) * 60 * (date[date.size() - 5] == '-' ? -1 : 1);
  const double inDay = numbers[3] * 3600 + numbers[4] * 60 + numbers[5] + numbers[6] / 1000.0 - zone;
  return static_cast<double>(sys_days(day).time_since_epoch().count()) * 86400.0 + inDay;
}

void LoggedSession::take(std::string_view text, const LogLine& line) {
  lastLine = text;
  story.take(line);
  takeFacts(line);
  takePairs(line.message);
  takeSigns(text, line.message);
  if (line.message.starts_with("Sparkle[UPDATE] ")) lastUpdateLine_ = line.message;
}

void LoggedSession::takeSigns(std::string_view text, std::string_view message) {
  for (std::size_t i = 0; i < causes().size(); ++i) {
    const Cause& cause = causes()[i];
    if (beginsWithOneOf(message, cause.cures)) signs.erase(i);
    if (!beginsWithOneOf(message, cause.signs)) continue;
    if (cause.name == "update-failed" && beginsWithOneOf(lastUpdateLine_, kGoodEnds)) continue;
    std::vector<std::string>& lines = signs[i];
    if (lines.size() == 2) lines.pop_back();
    lines.emplace_back(text);
  }
}

void LoggedSession::takeFacts(const LogLine& line) {
  const std::string_view message = line.message;
  const std::optional<double> seconds = secondsOfLogDate(line.date);
  if (seconds && lastSeconds_ && *seconds < *lastSeconds_ - kClockToleranceSeconds) clockWentBack = true;
  if (seconds) lastSeconds_ = seconds;

  if (const auto cpu = quotedAfter(message, "Fuse[SYSTEM] CPU: '")) system.cpu = cpu;
  if (const auto macOS = quotedAfter(message, "Fuse[SYSTEM] O/S Version: '")) system.macOS = macOS;
  if (const auto fuse = quotedAfter(message, "Fuse[SYSTEM] Fuse Version: '")) system.fuse = fuse;
  if (beginsWithOneOf(message, kFarewells)) isClientExpectedToGo = true;
  if (message == "AppDelegate:: Terminating") hasSaidFarewell = true;
  if (message.starts_with("Startup[LAUNCH] Launched ")) {
    launchSeconds_ = seconds;
    clientStatus.reset();
    isClientExpectedToGo = false;
  }
  if (!message.starts_with("Startup[TERMINATED] Child terminated ")) return;
  clientStatus = numberIn(message, "(status:");
  clientWasKilled = numberIn(message, "reason:") == 2;
  clientSeconds = seconds && launchSeconds_ ? std::optional(*seconds - *launchSeconds_) : std::nullopt;
}

void LoggedSession::takePairs(std::string_view message) {
  for (std::size_t i = 0; i < std::size(kPairs); ++i) {
    if (message.starts_with(kPairs[i].first)) ++pairs_.at(i);
    if (message.starts_with(kPairs[i].second) && --pairs_.at(i) < 0) lacksLines = true;
  }
}

}  // namespace karno::karnoctl
