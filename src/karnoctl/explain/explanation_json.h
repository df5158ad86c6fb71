#pragma once
#include <string>

#include "karnoctl/explain/explanation.h"
#include "karnoctl/json_text.h"

namespace karno::karnoctl {

// The explanation for scripts.
std::string explanationJson(const Explanation& explanation);

// Parts of it that others tell as well.
const char* nameOf(ChoiceRule rule);
Json settingsJson(const Explanation& explanation);

}  // namespace karno::karnoctl
