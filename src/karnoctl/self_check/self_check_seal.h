#pragma once
#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

inline constexpr const char* kSeal = "Contents/_CodeSignature/CodeResources";

// Where the bundle as a whole is sealed, whether its signature fits, whose it is, and whether Gatekeeper
// accepts it. A bundle without a seal is not looked at: on Linux nobody wants one.
void checkSeal(const CheckedBundle& bundle, bool isInQuarantine);

}  // namespace karno::karnoctl
