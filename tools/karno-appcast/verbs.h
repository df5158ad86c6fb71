#pragma once
#include <iosfwd>

#include "command_line/verb.h"

// The verbs, each made in a file of its own. They print to `out`, which outlives them.
namespace karno::appcast {

command_line::Verb keysVerb(std::ostream& out);
command_line::Verb publicKeyVerb(std::ostream& out);
command_line::Verb signVerb(std::ostream& out);
command_line::Verb verifyVerb(std::ostream& out);
command_line::Verb feedVerb(std::ostream& out);
command_line::Verb rotateVerb(std::ostream& out);

}  // namespace karno::appcast
