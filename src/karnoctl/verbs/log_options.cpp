#include "karnoctl/verbs/log_options.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <vector>

#include "karnoctl/closest_word.h"
#include "karnoctl/verbs/options.h"

namespace karno::karnoctl {
namespace {

constexpr std::array<std::string_view, 2> kWithValue{"--lines", "--color"};
constexpr std::array<std::string_view, 4> kOptions{"--follow", "--lines", "--color", "--help"};

UsageError logUsageError(std::string text) { return {std::move(text), "log"}; }

std::optional<UsageError> setLines(LogOptions& options, const std::string& value) {
  if (value == "all") {
    options.lines = std::nullopt;
    return std::nullopt;
  }
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size()) {
    return logUsageError("'" + value + "' is no number of lines");
  }
  options.lines = number;
  return std::nullopt;
}

std::optional<UsageError> setColour(LogOptions& options, const std::string& value) {
  if (value == "auto") {
    options.colour = ColourChoice::Auto;
  } else if (value == "always") {
    options.colour = ColourChoice::Always;
  } else if (value == "never") {
    options.colour = ColourChoice::Never;
  } else {
    return logUsageError("--color takes auto, always or never, not '" + value + "'");
  }
  return std::nullopt;
}

}  // namespace

std::variant<LogOptions, UsageError> parseLogOptions(std::span<const std::string> arguments) {
  LogOptions options;
  const std::vector<std::string> words = withValuesApart(arguments, kWithValue);
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    std::optional<UsageError> error;
    if (word == "--help") {
      options.help = true;
      return options;
    }
    if (word == "--follow") {
      options.follow = true;
    } else if (word == "--lines" || word == "--color") {
      if (i + 1 == words.size()) return logUsageError(word + " needs a value");
      error = word == "--lines" ? setLines(options, words[i + 1]) : setColour(options, words[i + 1]);
      ++i;
    } else if (word.starts_with('-')) {
      error = logUsageError("unknown option '" + word + "'" + suggestion(word, kOptions));
    } else {
      error = logUsageError("log takes no argument '" + word + "'");
    }
    if (error) return *error;
  }
  return options;
}

}  // namespace karno::karnoctl
