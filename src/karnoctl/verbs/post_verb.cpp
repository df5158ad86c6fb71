#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ostream>

#include "command_line/arguments.h"
#include "command_line/closest_word.h"
#include "ipc/wrapper_notification.h"
#include "karnoctl/verbs/running_launchers.h"
#include "karnoctl/verbs/verbs.h"
#include "platform/text/utf8.h"

namespace karno::karnoctl {
namespace {

struct Effect {
  std::string_view message;
  std::string_view text;
};

constexpr std::array<Effect, kWrapperMessages.size()> kEffects{{
    {kCheckForUpdates, "look for an update now"},
    {kEnableAutomaticUpdates, "look for updates from time to time"},
    {kDisableAutomaticUpdates, "look for updates only when asked"},
    {kUserSelectedQuit, "quit"},
    {kAppIsTerminating, "the client is going away: quit, unless an update is under way"},
    {kAppIsTerminatingAbnormally, "the client is failing: ask the user whether to start it again"},
    {kAppNeedsRestart, "start the client again once it has ended"},
    {kRestartWrapperWithFuse, "restart the launcher with the macFUSE build"},
    {kRestartWrapperWithFileProvider, "restart the launcher with the File Provider build"},
    {kRestartWrapper, "restart the launcher with the build that runs now"},
}};

std::string postHelp() {
  std::string text =
      "Posts to the running launcher what its client would post.\n"
      "\n"
      "Messages:\n";
  for (const Effect& line : kEffects) text += fmt::format("  {:<35} {}\n", line.message, line.text);
  text +=
      "\n"
      "Options:\n"
      "  --reason TEXT   why; the launcher logs it with app-is-terminating-abnormally\n"
      "\n"
      "Nobody answers, and a message that no launcher hears is lost.\n"
      "\n"
      "Exit status: 0 posted, 1 not posted, 3 posted while no launcher ran.\n";
  return text;
}

std::string messageIn(const command_line::Arguments& arguments) {
  const std::optional<std::string>& message = arguments.word();
  if (!message) throw command_line::UsageError("post what? (no message given)");
  if (std::ranges::find(kWrapperMessages, *message) != kWrapperMessages.end()) return *message;
  throw command_line::UsageError("unknown message '" + *message + "'" +
                                 command_line::suggestion(*message, kWrapperMessages));
}

// The notification service takes nothing but UTF-8, and a shell passes whatever it was given.
std::optional<std::string> reasonIn(const command_line::Arguments& arguments) {
  const std::optional<std::string> reason = arguments.value("--reason");
  return reason ? std::optional(platform::validUTF8(*reason)) : std::nullopt;
}

int post(const command_line::Arguments& arguments, const Context& context) {
  const std::string message = messageIn(arguments);
  // Before the launcher can quit by the message.
  const bool isThere = !runningLaunchers(context.platform()).empty();
  if (!postToLauncher(message, reasonIn(arguments), context)) return command_line::kExitFailed;
  if (isThere) return command_line::kExitOk;
  context.err << "karnoctl: no launcher runs, so nobody hears '" << message << "'\n";
  return kExitNotRunning;
}

}  // namespace

bool postToLauncher(std::string_view message, const std::optional<std::string>& reason,
                    const Context& context) {
  if (context.platform().distributedNotifications.post(wrapperNotification(message, reason))) return true;
  context.err << "karnoctl: cannot post '" << message
              << "': the session's notification service cannot be reached\n";
  return false;
}

command_line::Verb postVerb(Context& context) {
  return {.name = "post",
          .synopsis = "MESSAGE [--reason TEXT]",
          .summary = "tell the launcher what its client would tell it",
          .help = postHelp(),
          .texts = {"--reason"},
          .word = "message",
          .run = [&context](const auto& arguments) { return post(arguments, context); }};
}

}  // namespace karno::karnoctl
