#pragma once
#include <string>

#include "karnoctl/explain/explanation.h"

namespace karno::karnoctl {

// The explanation for scripts: one JSON object with a newline behind it. What cannot be learnt is null.
std::string explanationJson(const Explanation& explanation);

}  // namespace karno::karnoctl
