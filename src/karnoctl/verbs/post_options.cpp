#include "karnoctl/verbs/post_options.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "ipc/wrapper_protocol.h"
#include "karnoctl/closest_word.h"

namespace karno::karnoctl {
namespace {

constexpr std::string_view kReasonWithValue = "--reason=";

UsageError postUsageError(std::string text) { return {std::move(text), "post"}; }

std::variant<PostOptions, UsageError> withMessage(PostOptions options,
                                                  const std::vector<std::string>& words) {
  if (words.empty()) return postUsageError("post what? (no message given)");
  if (words.size() > 1) {
    return postUsageError("one message at a time, not '" + words[0] + "' and '" + words[1] + "'");
  }
  if (std::find(kWrapperMessages.begin(), kWrapperMessages.end(), words[0]) == kWrapperMessages.end()) {
    return postUsageError("unknown message '" + words[0] + "'" + suggestion(words[0], kWrapperMessages));
  }
  options.message = words[0];
  return options;
}

}  // namespace

std::variant<PostOptions, UsageError> parsePostOptions(std::span<const std::string> arguments) {
  PostOptions options;
  std::vector<std::string> words;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (optionsEnded || !argument.starts_with('-')) {
      words.push_back(argument);
    } else if (argument == "--") {
      optionsEnded = true;
    } else if (argument == "--help") {
      options.help = true;
      return options;
    } else if (argument == "--reason") {
      if (i + 1 == arguments.size()) return postUsageError("--reason needs a text");
      options.reason = arguments[++i];
    } else if (argument.starts_with(kReasonWithValue)) {
      options.reason = argument.substr(kReasonWithValue.size());
    } else {
      return postUsageError("unknown option '" + argument + "'");
    }
  }
  return withMessage(std::move(options), words);
}

}  // namespace karno::karnoctl
