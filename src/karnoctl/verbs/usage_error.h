#pragma once
#include <string>

namespace karno::karnoctl {

// What is wrong with a command line, as one line without the program's name. `verb` is the verb whose help
// says how to do better; empty when that is the general help.
struct UsageError {
  std::string text;
  std::string verb;
  bool operator==(const UsageError&) const = default;
};

}  // namespace karno::karnoctl
