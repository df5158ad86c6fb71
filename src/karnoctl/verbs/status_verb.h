#pragma once
#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// "status": which launchers run, and which client each of them has started.
Verb statusVerb();

}  // namespace karno::karnoctl
