#pragma once
#include <optional>
#include <string>
#include <vector>

#include "karnoctl/explain/explanation.h"
#include "karnoctl/verbs/running_launchers.h"

namespace karno::karnoctl {

// How long something has lasted, in its two largest units, rounded down: "42 s", "3 min", "2 h 5 min",
// "12 d 4 h". Nothing is shorter than "0 s".
std::string durationText(double seconds);

// What decided the build, by the log.
std::optional<ChoiceRule> ruleOf(const LauncherStory& story);

// "starts: checks the system", without the date.
std::string stateText(const LauncherStory& story);

// What "status" says about the launchers at that moment; `next` is what their next start would do,
// of which nothing is told when there are none.
std::string statusText(const std::vector<ObservedLauncher>& launchers, const Explanation& next,
                       platform::Date now);

// The same for scripts.
std::string statusJson(const std::vector<ObservedLauncher>& launchers, const Explanation& next,
                       platform::Date now);

}  // namespace karno::karnoctl
