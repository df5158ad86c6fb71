#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "karnoctl/diagnose/logged_session.h"

namespace karno::karnoctl {

struct Finding {
  const Cause* cause = nullptr;
  std::string detail;              // what more there is to say; may be empty
  std::vector<std::string> lines;  // that show it
};

struct Diagnosis {
  std::optional<LoggedSession> session;  // the last one; absent when no line is of a launcher's log
  std::vector<Finding> findings;         // the most likely cause first
  std::vector<std::string> notes;        // what cannot be told, and why
};

// Reads the lines of a log, in their order, and says what went wrong in the last start that it tells of.
class Diagnostician {
 public:
  void take(std::string_view text);

  // `isRunning` says whether the process of the last session is known to run (or not to run).
  Diagnosis diagnosis(const std::function<std::optional<bool>(const LoggedSession&)>& isRunning) const;

 private:
  std::vector<LoggedSession> sessions_;  // the last few, by their beginning
  std::size_t cutLines_ = 0;
  std::string cutLine_;
  bool hasOverlap_ = false;
};

}  // namespace karno::karnoctl
