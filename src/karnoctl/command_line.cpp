#include "karnoctl/command_line.h"

#include <ostream>
#include <vector>

#include "karnoctl/closest_word.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

UsageError unknownVerb(const std::string& name) {
  std::vector<std::string_view> names{"help"};
  for (const Verb& verb : allVerbs()) names.push_back(verb.name);
  return {"unknown verb '" + name + "'" + suggestion(name, names), ""};
}

int help(std::span<const std::string> arguments, Context& context) {
  if (arguments.empty()) {
    printGeneralHelp(context.out);
    return kExitOk;
  }
  if (arguments.size() > 1) return reportUsageError({"help takes one verb at most", ""}, context);
  const Verb* verb = findVerb(arguments[0]);
  if (verb == nullptr) return reportUsageError(unknownVerb(arguments[0]), context);
  printVerbHelp(*verb, context.out);
  return kExitOk;
}

}  // namespace

int run(std::span<const std::string> arguments, std::string_view version, Context& context) {
  if (arguments.empty()) return reportUsageError({"what is to be done? (no verb given)", ""}, context);
  const std::string& first = arguments[0];
  const auto rest = arguments.subspan(1);
  if (first == "help") return help(rest, context);
  if (first == "--help" || first == "--version") {
    if (!rest.empty()) return reportUsageError({first + " stands alone", ""}, context);
    if (first == "--help") return help(rest, context);
    context.out << "karnoctl " << version << '\n';
    return kExitOk;
  }
  if (first.starts_with('-')) return reportUsageError({"unknown option '" + first + "'", ""}, context);
  const Verb* verb = findVerb(first);
  if (verb == nullptr) return reportUsageError(unknownVerb(first), context);
  return verb->run(rest, context);
}

}  // namespace karno::karnoctl
