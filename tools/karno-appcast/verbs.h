#pragma once
#include "karno-appcast/verb.h"

// The verbs, each made in a file of its own.
namespace karno::appcast {

Verb keysVerb();
Verb publicKeyVerb();
Verb signVerb();
Verb verifyVerb();
Verb feedVerb();

}  // namespace karno::appcast
