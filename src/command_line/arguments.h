#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "command_line/verb.h"

namespace karno::command_line {

// What was said behind a verb: options in any order, as "--name value" or "--name=value", and at most the one
// word that the verb takes. The word behind an option that takes a value is that value, whatever it looks
// like. "--" ends the options.
class Arguments {
 public:
  // Throws UsageError when the verb does not take them. What follows a wish for help, or for the version, is
  // not read.
  Arguments(const Verb& verb, std::span<const std::string> arguments);

  bool wantsHelp() const { return has("--help"); }
  bool wantsVersion() const { return has("--version"); }
  bool has(std::string_view option) const { return options_.contains(option); }
  std::optional<std::string> value(std::string_view option) const;
  const std::optional<std::string>& word() const { return word_; }

  // Throw UsageError when it was left out.
  std::string required(std::string_view option) const;
  std::string requiredWord() const;

 private:
  // The number of arguments taken.
  std::size_t takeOption(const Verb& verb, std::span<const std::string> rest);
  void takeWord(const Verb& verb, const std::string& word);

  std::string verb_;
  std::string wordName_;
  std::map<std::string, std::string, std::less<>> options_;
  std::optional<std::string> word_;
};

// Absent for a text that is more or less than one number of decimal digits, or too large.
std::optional<std::uint64_t> numberIn(std::string_view text);

}  // namespace karno::command_line
