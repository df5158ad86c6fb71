#include "command_line/arguments.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "command_line/closest_word.h"

namespace karno::command_line {
namespace {

bool contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

UsageError unknownOption(const Verb& verb, const std::string& name) {
  std::vector<std::string_view> known{"--help", "--version"};
  for (const auto& names : {verb.options, verb.texts, verb.flags})
    known.insert(known.end(), names.begin(), names.end());
  return UsageError("unknown option '" + name + "'" + suggestion(name, known));
}

}  // namespace

Arguments::Arguments(const Verb& verb, std::span<const std::string> arguments)
    : verb_(verb.name), wordName_(verb.word) {
  bool optionsEnded = false;
  while (!arguments.empty() && !wantsHelp() && !wantsVersion()) {
    const std::string& first = arguments.front();
    std::size_t taken = 1;
    if (!optionsEnded && first == "--") {
      optionsEnded = true;
    } else if (!optionsEnded && first.starts_with('-')) {
      taken = takeOption(verb, arguments);
    } else {
      takeWord(verb, first);
    }
    arguments = arguments.subspan(taken);
  }
}

std::size_t Arguments::takeOption(const Verb& verb, std::span<const std::string> rest) {
  const std::string& first = rest.front();
  const std::string name = first == "-h"   ? "--help"
                           : first == "-V" ? "--version"
                                           : first.substr(0, first.find('='));
  const bool hasValue = name.size() < first.size();
  const bool isFlag = name == "--help" || name == "--version" || contains(verb.flags, name);
  const bool mayBeEmpty = contains(verb.texts, name);
  if (isFlag ? hasValue : !mayBeEmpty && !contains(verb.options, name)) throw unknownOption(verb, first);
  if (isFlag) return options_[name], 1;
  if (has(name)) throw UsageError(name + " is there twice");
  if (!hasValue && rest.size() < 2) throw UsageError(name + " needs a value");
  const std::string& value = options_[name] = hasValue ? first.substr(name.size() + 1) : rest[1];
  if (value.empty() && !mayBeEmpty) throw UsageError(name + " needs a value");
  return hasValue ? 1 : 2;
}

void Arguments::takeWord(const Verb& verb, const std::string& word) {
  if (verb.word.empty()) throw UsageError(verb_ + " takes no argument '" + word + "'");
  if (word_) throw UsageError("one " + wordName_ + " at a time, not '" + *word_ + "' and '" + word + "'");
  word_ = word;
}

std::optional<std::string> Arguments::value(std::string_view option) const {
  const auto found = options_.find(option);
  return found == options_.end() ? std::nullopt : std::optional(found->second);
}

std::string Arguments::required(std::string_view option) const {
  auto found = value(option);
  if (!found) throw UsageError(verb_ + " needs " + std::string(option));
  return std::move(*found);
}

std::string Arguments::requiredWord() const {
  if (!word_) throw UsageError(verb_ + " needs " + wordName_);
  return *word_;
}

std::optional<std::uint64_t> numberIn(std::string_view text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

}  // namespace karno::command_line
