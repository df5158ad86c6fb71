#include "karnoctl/verbs/post_verb.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <ostream>
#include <variant>

#include "ipc/wrapper_notification.h"
#include "karnoctl/verbs/post_options.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

struct Explanation {
  std::string_view message;
  std::string_view effect;
};

constexpr std::array<Explanation, kWrapperMessages.size()> kExplanations{{
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
  for (const Explanation& line : kExplanations)
    text += fmt::format("  {:<35} {}\n", line.message, line.effect);
  text +=
      "\n"
      "Options:\n"
      "  --reason TEXT   why; the launcher logs it with app-is-terminating-abnormally\n"
      "\n"
      "Nobody answers: a message that was posted while no launcher ran is lost.\n";
  return text;
}

int runPost(std::span<const std::string> arguments, Context& context) {
  const auto parsed = parsePostOptions(arguments);
  if (const auto* error = std::get_if<UsageError>(&parsed)) return reportUsageError(*error, context);
  const PostOptions& options = *std::get_if<PostOptions>(&parsed);
  if (options.help) {
    printVerbHelp(*findVerb("post"), context.out);
    return kExitOk;
  }
  const auto notification = wrapperNotification(options.message, options.reason);
  if (!context.platform().distributedNotifications.post(notification)) {
    context.err << "karnoctl: cannot post '" << options.message
                << "': the session's notification service cannot be reached\n";
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace

Verb postVerb() {
  return {.name = "post",
          .synopsis = "MESSAGE [--reason TEXT]",
          .summary = "tell the launcher what its client would tell it",
          .help = postHelp,
          .run = runPost};
}

}  // namespace karno::karnoctl
