#include <ostream>

#include "command_line/arguments.h"
#include "karnoctl/verbs/status_text.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

int showStatus(bool asJson, const Context& context) {
  platform::Platform& platform = context.platform();
  const auto launchers = observedLaunchers(platform);
  const Explanation next = launchers.empty() ? Explanation() : gatherExplanation(platform);
  const platform::Date now = platform.clock.now();
  context.out << (asJson ? statusJson(launchers, next, now) : statusText(launchers, next, now));
  return launchers.empty() ? kExitNotRunning : command_line::kExitOk;
}

}  // namespace

command_line::Verb statusVerb(Context& context) {
  return {
      .name = "status",
      .synopsis = "[--json]",
      .summary = "say whether the launcher and its client run, and what they are at",
      .help =
          R"(Shows the launchers that run in your account: what each is at (it starts, waits for macFUSE, asks
the user, runs, updates or quits), process, version, bundle and for how long it has been up; the
client that it has started, which build and why; and the end of its log. All of it is read from
the processes, the log and the settings; what they do not tell is said to be not known.

Options:
  --json   the same for scripts

Exit status: 0 a launcher runs, whatever it is at, 3 none does.
)",
      .flags = {"--json"},
      .run = [&context](const auto& arguments) { return showStatus(arguments.has("--json"), context); }};
}

}  // namespace karno::karnoctl
