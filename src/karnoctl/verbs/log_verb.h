#pragma once
#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// "log": shows what the launcher has logged, and what it logs from now on.
Verb logVerb();

}  // namespace karno::karnoctl
