#pragma once
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "platform/runtime_check.h"

namespace karno::karnoctl {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitNotRunning = 3;
inline constexpr int kExitUsage = 64;

// What a verb works with. The platform is only made, and installed, when a verb asks for it; what checks the
// system is asked for after that.
struct Context {
  std::ostream& out;
  std::ostream& err;
  std::function<platform::Platform&()> platform;
  std::function<platform::RuntimeCheck&()> runtimeCheck;
  bool outputIsTerminal = false;
  bool outputWantsColours = false;
};

// One thing that karnoctl can do. Each stands in a file of its own and in the table of verbs.cpp.
struct Verb {
  std::string_view name;
  std::string_view synopsis;          // its arguments, as in a usage line
  std::string_view summary;           // half a line
  std::function<std::string()> help;  // what "karnoctl help NAME" prints below the usage line

  // `arguments` are those after the verb. Writes its own errors; the result is the exit status.
  std::function<int(std::span<const std::string> arguments, Context& context)> run;
};

}  // namespace karno::karnoctl
