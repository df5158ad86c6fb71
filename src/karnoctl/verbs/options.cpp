#include "karnoctl/verbs/options.h"

#include <algorithm>
#include <cstddef>

#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {

std::vector<std::string> withValuesApart(std::span<const std::string> arguments,
                                         std::span<const std::string_view> optionsWithValue) {
  std::vector<std::string> words;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    const std::string name = word.substr(0, word.find('='));
    if (std::ranges::find(optionsWithValue, name) == optionsWithValue.end()) {
      words.push_back(word);
    } else if (name.size() < word.size()) {
      words.push_back(name);
      words.push_back(word.substr(name.size() + 1));
    } else {
      words.push_back(name);
      if (i + 1 < arguments.size()) words.push_back(arguments[++i]);
    }
  }
  return words;
}

std::optional<int> settledByHelpOrUsage(std::string_view verb, std::span<const std::string> arguments,
                                        Context& context) {
  if (arguments.empty()) return std::nullopt;
  const std::string& first = arguments.front();
  if (first == "--help") {
    printVerbHelp(*findVerb(verb), context.out);
    return kExitOk;
  }
  const std::string text = first.starts_with('-') ? "unknown option '" + first + "'"
                                                  : std::string(verb) + " takes no argument '" + first + "'";
  return reportUsageError({text, std::string(verb)}, context);
}

}  // namespace karno::karnoctl
