#pragma once
#include "platform/console_log.h"
#include "platform/posix/console_line.h"

namespace karno::platform {

// Standard error, see ConsoleOutput. When it is closed, or its reader is gone or asleep, lines are dropped.
class StandardErrorLog final : public ConsoleLog {
 public:
  void log(std::string_view line) override { writeConsoleLine(line); }
};

}  // namespace karno::platform
