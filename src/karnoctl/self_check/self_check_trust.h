#pragma once
#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

// Whether the system starts the bundle and lets it be updated where it lies: the lowest system that it names,
// translocation, quarantine, whose signature it has and whether it fits, what Gatekeeper says of it, and whom
// it belongs to. Asks tools of the system and waits for them; what a missing one would have told is noted as
// not checked. `information` is that of the launcher's Info.plist.
void checkTrust(const CheckedBundle& bundle, const platform::Value::Dictionary& information);

}  // namespace karno::karnoctl
