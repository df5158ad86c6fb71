#pragma once
#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// "post": tells the launcher what the embedded application would tell it.
Verb postVerb();

}  // namespace karno::karnoctl
