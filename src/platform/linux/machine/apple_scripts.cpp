#include "platform/linux/machine/apple_scripts.h"

#include "platform/value.h"

namespace karno::platform {
namespace {

std::string errorInformation(int number, const std::string& message) {
  return Value(
             Value::Dictionary{{"NSAppleScriptErrorMessage", message}, {"NSAppleScriptErrorNumber", number}})
      .description();
}

}  // namespace

std::optional<std::string> LinuxAppleScripts::execute(const std::string& source) {
  const auto run = commands_.run({.executablePath = "/usr/bin/osascript", .arguments = {"-e", source}});
  if (!run) return errorInformation(static_cast<int>(run.error().code()), run.error().localizedDescription());
  const int status = run.value().end.terminationStatus;
  if (status != 0) return errorInformation(status, "osascript failed");
  return std::nullopt;
}

}  // namespace karno::platform
