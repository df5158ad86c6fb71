#pragma once
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "platform/runtime_check.h"

namespace karno::karnoctl {

inline constexpr int kExitNotRunning = 3;

// What a verb works with. The platform is only made, and installed, when a verb asks for it; what checks the
// system is asked for after that.
struct Context {
  std::ostream& out;
  std::ostream& err;
  std::function<platform::Platform&()> platform;
  std::function<platform::RuntimeCheck&()> runtimeCheck;
  std::function<std::optional<platform::Error>(const std::string&, std::string_view)> writePrivateFile = {};
  bool outputIsTerminal = false;
  bool outputWantsColours = false;
  bool outputIsUTF8 = true;
};

}  // namespace karno::karnoctl
