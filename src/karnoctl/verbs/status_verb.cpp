#include "karnoctl/verbs/status_verb.h"

#include <ostream>

#include "karnoctl/verbs/options.h"
#include "karnoctl/verbs/status_text.h"

namespace karno::karnoctl {
namespace {

std::string statusHelp() {
  return "Shows the launchers that run in your account, with the client that each has started: process,\n"
         "build, bundle and for how long they have been up.\n"
         "\n"
         "Exit status: 0 a launcher runs, 3 none does.\n";
}

int runStatus(std::span<const std::string> arguments, Context& context) {
  if (const auto status = settledByHelpOrUsage("status", arguments, context)) return *status;
  const platform::Platform& platform = context.platform();
  const auto launchers = runningLaunchers(platform);
  context.out << statusText(launchers, platform.clock.now());
  return launchers.empty() ? kExitNotRunning : kExitOk;
}

}  // namespace

Verb statusVerb() {
  return {.name = "status",
          .synopsis = "",
          .summary = "say whether the launcher and its client run",
          .help = statusHelp,
          .run = runStatus};
}

}  // namespace karno::karnoctl
