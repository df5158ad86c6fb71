#pragma once
#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// "self-check": what is wrong with a bundle of the launcher and with the system for it.
Verb selfCheckVerb();

}  // namespace karno::karnoctl
