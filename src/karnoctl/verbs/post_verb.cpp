#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ostream>

#include "command_line/arguments.h"
#include "command_line/closest_word.h"
#include "ipc/wrapper_notification.h"
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
      "Nobody answers: a message that was posted while no launcher ran is lost.\n";
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
  const auto notification = wrapperNotification(message, reasonIn(arguments));
  if (context.platform().distributedNotifications.post(notification)) return command_line::kExitOk;
  context.err << "karnoctl: cannot post '" << message
              << "': the session's notification service cannot be reached\n";
  return command_line::kExitFailed;
}

}  // namespace

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
