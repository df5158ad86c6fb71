#pragma once
#include <array>
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
  void take(std::string_view text, const LogLine& line);

  // Whether it has said why it quits, or that it ends.
  bool hasEnded() const { return story.state() == LauncherState::Quits; }

  std::int32_t processIdentifier = 0;
  LauncherStory story;
  SystemFacts system;
  std::string lastLine;
  std::string questionLine;                // the last that asked the user something
  std::string clientEnd;                   // "status 1", "signal 9"; empty where there is none
  std::string endLine;                     // of the client's last end
  std::optional<platform::Date> lastDate;  // of the last line
  std::optional<double> clientSeconds;     // from the last launch to its end
  bool isClientExpectedToGo = false;
  bool isHandingOver = false;       // to a launcher that it opens before it quits
  bool hasUpdateEndedWell = false;  // the updater's last session
  bool areUpdatesDisabled = false;  // by the administrator
  bool hasOddDates = false;         // of another locale, or damaged

  // Lines that stand for a cause of the table: the first, and the last where that is another.
  std::map<const Cause*, std::vector<std::string>> signs;

 private:
  void takeSigns(std::string_view text, std::string_view message);
  void takeClient(std::string_view text, std::string_view message);
  void takePairs(std::string_view text, std::string_view message);

  std::optional<platform::Date> launched_;
  std::array<int, 5> pairs_{};  // how often the first of a pair stands there more than the second
};

// How the messages begin that tell of a session, beside the signs and cures of causes; for those who hold
// them against the launcher.
std::vector<std::string_view> linesOfSessions();

}  // namespace karno::karnoctl
