#pragma once
#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// "explain": what the next start of the launcher will do, and why.
Verb explainVerb();

}  // namespace karno::karnoctl
