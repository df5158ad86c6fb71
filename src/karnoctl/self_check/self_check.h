#pragma once
#include <string>

#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

// Looks at all of the bundle and at the system, but for its exceptions: see checkExceptions().
void checkBundleAndSystem(const CheckedBundle& bundle);

// What is said when nothing is wrong.
std::string closingSentence(const CheckedBundle& bundle);

// All findings for scripts.
std::string findingsJson(const CheckedBundle& bundle);

}  // namespace karno::karnoctl
