#pragma once
#include <span>
#include <string_view>

#include "karnoctl/verbs/usage_error.h"
#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// All verbs, in the order in which the help lists them.
std::span<const Verb> allVerbs();

// Null when there is none of that name.
const Verb* findVerb(std::string_view name);

// "karnoctl: TEXT" and where to read on; gives the exit status for it.
int reportUsageError(const UsageError& error, Context& context);

void printGeneralHelp(std::ostream& out);
void printVerbHelp(const Verb& verb, std::ostream& out);

}  // namespace karno::karnoctl
