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
#include "platform/date.h"

namespace karno::karnoctl {

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
  std::string questionLine;  // the last that asked the user something
  std::string endLine;       // of the client's last end
  SystemFacts system;
  std::optional<platform::Date> lastDate;  // of the last line
  std::optional<double> clientSeconds;     // from the last launch to its end
  std::optional<int> clientStatus;         // how it ended
  bool clientWasKilled = false;
  bool hasSaidFarewell = false;  // the launcher, by its last line
  bool isClientExpectedToGo = false;
  bool isHandingOver = false;  // to a launcher that it opens before it quits
  bool hasForeignDates = false;
  bool areUpdatesDisabled = false;  // by the administrator
  std::string lineAfterGap;         // the first that never comes without another, which is not there
  std::string lineOfSetClock;       // the last whose date is well before that of the line above it

  // Lines that stand for a cause, by its place in the table: the first, and the last where that is another.
  std::map<std::size_t, std::vector<std::string>> signs;

 private:
  void takeSigns(std::string_view text, std::string_view message);
  void takeFacts(std::string_view message);
  void takeDate(std::string_view text, std::string_view dateText);
  void takeClient(std::string_view text, std::string_view message);
  void takePairs(std::string_view text, std::string_view message);

  std::optional<platform::Date> launchDate_;
  std::string lastUpdateLine_;
  std::array<int, 5> pairs_{};  // how often the first of a pair stands there more than the second
};

// How the messages begin that tell of a session, beside the signs and cures of causes; for those who hold
// them against the launcher.
std::vector<std::string_view> linesOfSessions();

}  // namespace karno::karnoctl
