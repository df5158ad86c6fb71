#include "embedded_client/script.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "ipc/wrapper_protocol.h"

namespace karno::client {
namespace {

constexpr std::size_t kStepsMax = 1000;
constexpr std::int64_t kMillisecondsMax = 24 * 60 * 60 * 1000;

// A whole decimal number without a sign, up to `limit`.
std::optional<std::int64_t> number(std::string_view digits, std::int64_t limit) {
  std::int64_t value = 0;
  const char* const last = digits.data() + digits.size();
  const auto [end, error] = std::from_chars(digits.data(), last, value);
  if (error != std::errc() || end != last || digits.starts_with('-') || value > limit) return std::nullopt;
  return value;
}

std::optional<std::int64_t> milliseconds(std::string_view seconds) {
  constexpr std::size_t kPlaces = 3;
  const std::size_t point = seconds.find('.');
  const auto whole = number(seconds.substr(0, point), kMillisecondsMax / 1000);
  if (!whole) return std::nullopt;
  std::string fraction(point == std::string_view::npos ? "0" : seconds.substr(point + 1));
  if (fraction.empty() || fraction.size() > kPlaces) return std::nullopt;
  fraction.resize(kPlaces, '0');
  const auto part = number(fraction, 999);
  if (!part || *whole * 1000 + *part > kMillisecondsMax) return std::nullopt;
  return *whole * 1000 + *part;
}

std::optional<Action> actionFor(std::string_view text) {
  const std::size_t equals = text.find('=');
  const std::string_view word = text.substr(0, equals);
  std::optional<std::string> value;
  if (equals != std::string_view::npos) value = text.substr(equals + 1);

  if (word == "crash" && !value) return Crash();
  if (word == "ignore-term" && !value) return IgnoreTerminationSignal();
  if (word == "exit" && value) {
    const auto status = number(*value, 255);
    if (!status) return std::nullopt;
    return ExitWithStatus{static_cast<int>(*status)};
  }
  if (std::find(kWrapperMessages.begin(), kWrapperMessages.end(), word) == kWrapperMessages.end()) {
    return std::nullopt;
  }
  return PostMessage{std::string(word), value};
}

std::variant<ScriptStep, std::string> stepFor(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) {
    return "'" + std::string(text) + "' is not of the form SECONDS:ACTION";
  }
  const auto time = milliseconds(text.substr(0, colon));
  if (!time) return "'" + std::string(text.substr(0, colon)) + "' is no number of seconds";
  const auto action = actionFor(text.substr(colon + 1));
  if (!action) {
    return "'" + std::string(text.substr(colon + 1)) +
           "' is neither a message nor one of exit=STATUS, crash and ignore-term";
  }
  return ScriptStep{*time, *action};
}

}  // namespace

std::variant<std::vector<ScriptStep>, std::string> parseScript(std::string_view text) {
  std::vector<ScriptStep> steps;
  while (!text.empty()) {
    if (steps.size() == kStepsMax) return "more than " + std::to_string(kStepsMax) + " steps";
    const std::size_t comma = text.find(',');
    auto step = stepFor(text.substr(0, comma));
    if (auto* error = std::get_if<std::string>(&step)) return std::move(*error);
    steps.push_back(std::move(*std::get_if<ScriptStep>(&step)));
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
    if (text.empty()) return std::string("it ends with a comma");
  }
  std::stable_sort(steps.begin(), steps.end(),
                   [](const ScriptStep& a, const ScriptStep& b) { return a.milliseconds < b.milliseconds; });
  return steps;
}

}  // namespace karno::client
