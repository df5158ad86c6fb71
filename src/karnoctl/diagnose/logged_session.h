#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "karnoctl/diagnose/causes.h"
#include "karnoctl/explain/requirement_check.h"
#include "karnoctl/log/log_line.h"
#include "karnoctl/state/launcher_story.h"

namespace karno::karnoctl {

// Seconds since 1970 of a date as the log writes it in a locale with Western digits and calendar; absent for
// any other.
std::optional<double> secondsOfLogDate(std::string_view date);

// What the lines of one start of a launcher come to, as far as it matters for what went wrong.
class LoggedSession {
 public:
  explicit LoggedSession(std::int32_t process) : processIdentifier(process) {}

  void take(std::string_view text, const LogLine& line);

  // Whether it has said why it quits, or that it ends.
  bool hasEnded() const { return story.quitReason.has_value() || hasSaidFarewell; }

  std::int32_t processIdentifier;
  LauncherStory story;
  std::string lastLine;
  SystemFacts system;
  std::optional<double> clientSeconds;  // from the last launch to its end
  std::optional<int> clientStatus;      // how it ended
  bool clientWasKilled = false;
  bool hasSaidFarewell = false;  // the launcher, by its last line
  bool isClientExpectedToGo = false;
  bool clockWentBack = false;
  bool lacksLines = false;

  // Lines that stand for a cause, by its place in the table: the first, and the last where that is another.
  std::map<std::size_t, std::vector<std::string>> signs;

 private:
  void takeSigns(std::string_view text, std::string_view message);
  void takeFacts(const LogLine& line);
  void takePairs(std::string_view message);

  std::optional<double> lastSeconds_;
  std::optional<double> launchSeconds_;
  std::string lastUpdateLine_;
  std::array<int, 5> pairs_{};  // how often the first of a pair stands there more than the second
};

}  // namespace karno::karnoctl
