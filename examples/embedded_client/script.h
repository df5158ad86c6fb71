#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace karno::client {

struct PostMessage {
  std::string message;
  std::optional<std::string> reason;
  bool operator==(const PostMessage&) const = default;
};
struct ExitWithStatus {
  int status = 0;
  bool operator==(const ExitWithStatus&) const = default;
};
struct Crash {
  bool operator==(const Crash&) const = default;
};
struct IgnoreTerminationSignal {
  bool operator==(const IgnoreTerminationSignal&) const = default;
};

using Action = std::variant<PostMessage, ExitWithStatus, Crash, IgnoreTerminationSignal>;

// One thing that the client does by itself, so many milliseconds after its start.
struct ScriptStep {
  std::int64_t milliseconds = 0;
  Action action;
  bool operator==(const ScriptStep&) const = default;
};

// Reads a list such as "2:check-for-updates,5.5:user-selected-quit": seconds (at most a day, three places
// after the point), a colon, and a message to post or one of exit=STATUS, crash and ignore-term. A message
// may carry a reason: "app-is-terminating-abnormally=disk full". The result is in the order of time; steps of
// one moment keep theirs. A text that is none of this gives a sentence that says why; the empty text no
// steps.
std::variant<std::vector<ScriptStep>, std::string> parseScript(std::string_view text);

}  // namespace karno::client
