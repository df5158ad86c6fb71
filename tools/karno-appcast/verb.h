#pragma once
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace karno::appcast {

class Arguments;

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 64;

// One thing that karno-appcast can do. Each stands in a file of its own and in the table of verbs.cpp.
struct Verb {
  std::string_view name;
  std::string_view synopsis;  // its arguments, as in a usage line
  std::string_view summary;   // half a line
  std::string_view help;      // what "karno-appcast help NAME" prints below the usage line
  std::vector<std::string_view> optionsWithValue;
  std::vector<std::string_view> flags;
  std::string_view word;  // what its one word is, such as "ARCHIVE"; empty: it takes none

  // Prints to `out`; throws Failure or UsageError.
  void (*run)(const Arguments& arguments, std::ostream& out);
};

// All verbs, in the order in which the help lists them.
std::span<const Verb> allVerbs();

}  // namespace karno::appcast
