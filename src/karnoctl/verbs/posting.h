#pragma once
#include <optional>
#include <string>

#include "karnoctl/verbs/context.h"

namespace karno::karnoctl {

// Posts to the launcher what its client would post; whether anybody listens is not known. False when the
// session's notification service cannot be reached, which is said then.
bool postToLauncher(const std::string& message, const std::optional<std::string>& reason,
                    const Context& context);

}  // namespace karno::karnoctl
