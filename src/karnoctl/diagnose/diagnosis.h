#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "karnoctl/diagnose/logged_session.h"
#include "platform/date.h"

namespace karno::karnoctl {

struct Finding {
  const Cause* cause = nullptr;
  std::string detail;              // what more there is to say; may be empty
  std::vector<std::string> lines;  // that show it
};

struct Diagnosis {
  std::optional<LoggedSession> session;  // the last one; absent when no line is of a launcher's log
  std::vector<Finding> findings;         // the most likely cause first
  std::vector<std::string> notes;        // what cannot be told, and why; what else is to be known
  std::optional<bool> runs;              // the launcher of that session
};

// Reads the lines of a log, in their order, whole or not and whoever wrote them, and says what went wrong in
// the last start that it tells of.
class Diagnostician {
 public:
  void take(std::string_view text);

  // `isRunning` says whether that process is known to run (or not to run); `now` is for one that does.
  Diagnosis diagnosis(const std::function<std::optional<bool>(std::int32_t process)>& isRunning,
                      std::optional<platform::Date> now = std::nullopt) const;

 private:
  void addFindings(Diagnosis& found) const;

  std::vector<LoggedSession> sessions_;  // the last few, by their beginning
  std::size_t foreignLines_ = 0;
  std::string cutLine_;      // the first; empty where there is none
  bool hasOverlap_ = false;  // of the last session with one before it
};

}  // namespace karno::karnoctl
