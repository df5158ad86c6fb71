#include "karno-appcast/arguments.h"

#include <algorithm>
#include <vector>

#include "karnoctl/closest_word.h"

namespace karno::appcast {
namespace {

bool contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

UsageError unknownOption(const Verb& verb, const std::string& name) {
  std::vector<std::string_view> known{"--help"};
  known.insert(known.end(), verb.optionsWithValue.begin(), verb.optionsWithValue.end());
  known.insert(known.end(), verb.flags.begin(), verb.flags.end());
  return UsageError("unknown option '" + name + "'" + karnoctl::suggestion(name, known));
}

}  // namespace

Arguments::Arguments(const Verb& verb, std::span<const std::string> arguments)
    : verb_(verb.name), wordName_(verb.word) {
  bool optionsEnded = false;
  while (!arguments.empty()) {
    const std::string& first = arguments.front();
    std::size_t taken = 1;
    if (!optionsEnded && first == "--") {
      optionsEnded = true;
    } else if (!optionsEnded && first.starts_with('-')) {
      taken = takeOption(verb, arguments);
    } else {
      takeWord(verb, first);
    }
    if (wantsHelp()) return;
    arguments = arguments.subspan(taken);
  }
}

std::size_t Arguments::takeOption(const Verb& verb, std::span<const std::string> rest) {
  const std::string& first = rest.front();
  const std::string name = first.substr(0, first.find('='));
  const bool hasValue = name.size() < first.size();
  if ((contains(verb.flags, name) || name == "--help") && !hasValue) {
    flags_.insert(name);
    return 1;
  }
  if (!contains(verb.optionsWithValue, name)) throw unknownOption(verb, first);
  if (values_.contains(name)) throw UsageError(name + " is there twice");
  if (!hasValue && rest.size() < 2) throw UsageError(name + " needs a value");
  values_[name] = hasValue ? first.substr(name.size() + 1) : rest[1];
  if (values_[name].empty()) throw UsageError(name + " needs a value");
  return hasValue ? 1 : 2;
}

void Arguments::takeWord(const Verb& verb, const std::string& word) {
  if (verb.word.empty()) throw UsageError(verb_ + " takes no argument '" + word + "'");
  if (word_) throw UsageError("one " + wordName_ + " at a time, not '" + *word_ + "' and '" + word + "'");
  word_ = word;
}

std::optional<std::string> Arguments::value(std::string_view option) const {
  const auto found = values_.find(option);
  return found == values_.end() ? std::nullopt : std::optional(found->second);
}

std::string Arguments::required(std::string_view option) const {
  auto found = value(option);
  if (!found) throw UsageError(verb_ + " needs " + std::string(option));
  return std::move(*found);
}

std::string Arguments::word() const {
  if (!word_) throw UsageError(verb_ + " needs " + wordName_);
  return *word_;
}

}  // namespace karno::appcast
