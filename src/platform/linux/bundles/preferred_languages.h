#pragma once
#include <string>
#include <vector>

namespace karno::platform {

// The user's languages, most wanted first, as tags such as "zh-Hant-HK": AppleLanguages of the global
// preferences where a Mac keeps them, else those of the environment as GNU programs read it. None for the C
// locale. Read afresh each time.
std::vector<std::string> preferredLanguages();

}  // namespace karno::platform
