#include <ostream>

#include "karnoctl/verbs/status_text.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

int showStatus(const Context& context) {
  const platform::Platform& platform = context.platform();
  const auto launchers = runningLaunchers(platform);
  context.out << statusText(launchers, platform.clock.now());
  return launchers.empty() ? kExitNotRunning : command_line::kExitOk;
}

}  // namespace

command_line::Verb statusVerb(Context& context) {
  return {
      .name = "status",
      .summary = "say whether the launcher and its client run",
      .help =
          "Shows the launchers that run in your account, with the client that each has started: process,\n"
          "build, bundle and for how long they have been up.\n"
          "\n"
          "Exit status: 0 a launcher runs, 3 none does.\n",
      .run = [&context](const auto&) { return showStatus(context); }};
}

}  // namespace karno::karnoctl
