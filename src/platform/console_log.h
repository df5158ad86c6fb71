#pragma once
#include <string_view>

namespace karno::platform {

// The platform's console log: NSLog on a Mac, standard error elsewhere. Safe from any thread; a line is
// written in one piece.
class ConsoleLog {
 public:
  virtual ~ConsoleLog() = default;
  virtual void log(std::string_view line) = 0;
};

}  // namespace karno::platform
