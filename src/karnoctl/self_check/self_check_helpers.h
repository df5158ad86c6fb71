#pragma once
#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

// Both builds of the client, and on Linux the program that installs updates.
void checkHelpers(const CheckedBundle& bundle);

}  // namespace karno::karnoctl
