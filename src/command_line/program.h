#pragma once
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command_line/verb.h"

namespace karno::command_line {

// A program that is told by a verb what to do. "help", "--help", "-h", "--version" and "-V" are the
// same in all.
struct Program {
  std::string_view name;
  std::string_view version;
  std::string_view purpose;       // a sentence
  std::string_view exitStatuses;  // such as "0 done, 1 failed"
  std::vector<Verb> verbs;        // in the order in which the help lists them
};

// Does what the command line asks for; `arguments` are without the program's name. Says on `err` what is
// wrong with it or why it failed, and where to read on. The result is the exit status, also when the output
// could not be written.
int run(const Program& program, std::span<const std::string> arguments, std::ostream& out, std::ostream& err);

}  // namespace karno::command_line
