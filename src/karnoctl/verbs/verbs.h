#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "command_line/verb.h"
#include "karnoctl/verbs/context.h"

// The verbs, each made in a file of its own. The context outlives them.
namespace karno::karnoctl {

command_line::Verb statusVerb(Context& context);
command_line::Verb logVerb(Context& context);
command_line::Verb diagnoseVerb(Context& context);
command_line::Verb explainVerb(Context& context);
command_line::Verb selfCheckVerb(Context& context);
command_line::Verb postVerb(Context& context);
command_line::Verb quitVerb(Context& context);
command_line::Verb reportVerb(Context& context);

// Posts to the launcher what its client would post; whether anybody listens is not known. False when the
// session's notification service cannot be reached, which is said then.
bool postToLauncher(std::string_view message, const std::optional<std::string>& reason,
                    const Context& context);

}  // namespace karno::karnoctl
