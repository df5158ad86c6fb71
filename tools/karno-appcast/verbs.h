#pragma once
#include <iosfwd>

#include "command_line/verb.h"

// The verbs. They print to `out`, and what is for people alone to `err`; both outlive them.
namespace karno::appcast {

command_line::Verb keysVerb(std::ostream& out, std::ostream& err);
command_line::Verb publicKeyVerb(std::ostream& out);
command_line::Verb signVerb(std::ostream& out);
command_line::Verb verifyVerb(std::ostream& out);
command_line::Verb feedVerb(std::ostream& out);
command_line::Verb rotateVerb(std::ostream& out);
command_line::Verb checkVerb(std::ostream& out);

}  // namespace karno::appcast
