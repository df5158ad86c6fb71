#pragma once
#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

// On macOS, whether the bundle as a whole is signed, and whether it has the framework that updates it, which
// is loaded for that and asked for what the launcher sends to it.
void checkMacBundle(const CheckedBundle& bundle);

// Whether this system has everything that the launcher sends to its classes.
void checkSystem(const CheckedBundle& bundle);

// Raises an exception in the system. What has been found so far should have been said by now, since a system
// where it does not become an error may end this process.
void checkExceptions(const CheckedBundle& bundle);

}  // namespace karno::karnoctl
