#pragma once
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace karno::command_line {

class Arguments;

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 64;

// What is wrong with a command line, as one line without the program's name.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One thing that a program can do.
struct Verb {
  std::string_view name;
  std::string_view synopsis = {};  // its arguments, as in a usage line
  std::string_view summary;        // half a line
  std::string help;                // what "PROGRAM help NAME" prints below the usage line

  // "--help", "-h", "--version" and "-V" need not be named, and mean the same in all verbs.
  std::vector<std::string_view> options = {};  // each once at most, with a value that is not empty
  std::vector<std::string_view> texts = {};    // likewise, but the value may be empty
  std::vector<std::string_view> flags = {};    // without one
  std::string_view word = {};  // what its one word is, such as "ARCHIVE"; empty: it takes none

  // The result is the exit status. Throws UsageError; the text of any other exception is why it failed.
  std::function<int(const Arguments& arguments)> run;
};

}  // namespace karno::command_line
