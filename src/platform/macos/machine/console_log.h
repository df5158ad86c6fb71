#pragma once
#include "platform/console_log.h"
#include "platform/posix/console_line.h"

namespace karno::platform {

// NSLog(), which writes to the unified log, and to standard error where that is a terminal or a file.
class NSLogConsole final : public ConsoleLog {
 public:
  void log(std::string_view line) override { writeConsoleLine(line); }
};

}  // namespace karno::platform
