#pragma once
#include <map>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "karno-appcast/verb.h"

namespace karno::appcast {

// What is wrong with a command line, as one line without the program's name.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What was said behind a verb: options in any order, as "--name value" or "--name=value", and at most the one
// word that the verb takes. "--" ends the options.
class Arguments {
 public:
  // Throws UsageError when the verb does not take them.
  Arguments(const Verb& verb, std::span<const std::string> arguments);

  bool wantsHelp() const { return has("--help"); }
  bool has(std::string_view flag) const { return flags_.contains(flag); }
  std::optional<std::string> value(std::string_view option) const;

  // Throw UsageError when it was left out.
  std::string required(std::string_view option) const;
  std::string word() const;

 private:
  // The number of arguments taken.
  std::size_t takeOption(const Verb& verb, std::span<const std::string> rest);
  void takeWord(const Verb& verb, const std::string& word);

  std::string verb_;
  std::string wordName_;
  std::map<std::string, std::string, std::less<>> values_;
  std::set<std::string, std::less<>> flags_;
  std::optional<std::string> word_;
};

}  // namespace karno::appcast
