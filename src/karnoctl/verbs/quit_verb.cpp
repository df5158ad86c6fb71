#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <vector>

#include "command_line/arguments.h"
#include "ipc/wrapper_protocol.h"
#include "karnoctl/verbs/status_text.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

constexpr int kExitStillRuns = 4;
constexpr std::uint64_t kUsualWaitSeconds = 30;
constexpr std::uint64_t kWaitSecondsMax = 86'400;
constexpr double kLookForEndSeconds = 0.25;

// Those that ran before and run now.
std::vector<RunningLauncher> stillRunning(const std::vector<RunningLauncher>& before,
                                          const Context& context) {
  std::vector<RunningLauncher> left = runningLaunchers(context.platform());
  std::erase_if(left, [&](const RunningLauncher& one) {
    return std::ranges::count(before, one.processIdentifier, &RunningLauncher::processIdentifier) == 0;
  });
  return left;
}

// Both the clock, which may be set meanwhile, and the looks, which take their time, bound the wait.
bool haveEnded(const std::vector<RunningLauncher>& launchers, std::uint64_t seconds, const Context& context) {
  platform::Platform& platform = context.platform();
  const auto activity = platform.dispatch.beginActivity("Waiting for the launcher to quit");
  const platform::Date begin = platform.clock.now();
  const auto wait = static_cast<double>(seconds);
  for (double slept = 0; !stillRunning(launchers, context).empty(); slept += kLookForEndSeconds) {
    if (std::max(slept, platform::secondsBetween(begin, platform.clock.now())) >= wait) return false;
    platform.dispatch.sleep(kLookForEndSeconds);
  }
  return true;
}

int quit(std::uint64_t seconds, const Context& context) {
  const std::vector<RunningLauncher> launchers = runningLaunchers(context.platform());
  if (launchers.empty()) {
    context.err << "karnoctl: no launcher runs\n";
    return kExitNotRunning;
  }
  if (!postToLauncher(kUserSelectedQuit, std::nullopt, context)) return command_line::kExitFailed;
  if (haveEnded(launchers, seconds, context)) {
    context.out << "The Karno launcher has quit.\n";
    return command_line::kExitOk;
  }
  for (const ObservedLauncher& left : observedLaunchers(context.platform())) {
    context.err << fmt::format("karnoctl: the launcher, process {}, still runs after {} s; state: {}\n",
                               left.launcher.processIdentifier, seconds, stateText(left.logged.story));
  }
  return kExitStillRuns;
}

std::uint64_t secondsIn(const std::string& value) {
  const auto number = command_line::numberIn(value);
  if (number && *number <= kWaitSecondsMax) return *number;
  throw command_line::UsageError(
      fmt::format("'{}' is no number of seconds from 0 to {}", value, kWaitSecondsMax));
}

}  // namespace

command_line::Verb quitVerb(Context& context) {
  const auto run = [&context](const command_line::Arguments& arguments) {
    const auto wait = arguments.value("--wait");
    return quit(wait ? secondsIn(*wait) : kUsualWaitSeconds, context);
  };
  return {
      .name = "quit",
      .synopsis = "[--wait SECONDS]",
      .summary = "have the launcher and its client quit, and wait for that",
      .help = R"(Posts user-selected-quit to the launchers that run in your account and waits until they have
ended. A question on the screen holds the end up until the user has answered it.

Options:
  --wait SECONDS   how long to wait (30)

Exit status: 0 they have ended, 3 none ran, 4 one still runs.
)",
      .options = {"--wait"},
      .run = run};
}

}  // namespace karno::karnoctl
