#include "karno-appcast/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>
#include <vector>

#include "karno-appcast/arguments.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/verb.h"
#include "karnoctl/closest_word.h"

namespace karno::appcast {
namespace {

void printGeneralHelp(std::ostream& out) {
  out << "Usage: karno-appcast VERB [ARGUMENT...]\n"
         "       karno-appcast help [VERB]\n"
         "       karno-appcast --help | --version\n"
         "\n"
         "Signs releases of the launcher and writes the feed that offers them.\n"
         "\n"
         "Verbs:\n";
  for (const Verb& verb : allVerbs()) out << fmt::format("  {:<10} {}\n", verb.name, verb.summary);
  out << fmt::format("  {:<10} {}\n", "help", "say how a verb is used")
      << "\n"
         "Exit status: 0 done, 1 failed, 64 wrong usage.\n";
}

void printVerbHelp(const Verb& verb, std::ostream& out) {
  out << "Usage: karno-appcast " << verb.name << ' ' << verb.synopsis << "\n\n" << verb.help;
}

const Verb& verbNamed(const std::string& name) {
  std::vector<std::string_view> names{"help"};
  for (const Verb& verb : allVerbs()) {
    if (verb.name == name) return verb;
    names.push_back(verb.name);
  }
  throw UsageError("unknown verb '" + name + "'" + karnoctl::suggestion(name, names));
}

void help(std::span<const std::string> arguments, std::ostream& out) {
  if (arguments.size() > 1) throw UsageError("help takes one verb at most");
  if (arguments.empty()) return printGeneralHelp(out);
  printVerbHelp(verbNamed(arguments[0]), out);
}

int reportUsageError(std::string_view text, std::string_view verb, std::ostream& err) {
  err << "karno-appcast: " << text << "\nTry \"karno-appcast "
      << (verb.empty() ? "--help" : "help " + std::string(verb)) << "\".\n";
  return kExitUsage;
}

int runVerb(const Verb& verb, std::span<const std::string> rest, std::ostream& out, std::ostream& err) {
  try {
    const Arguments arguments(verb, rest);
    if (arguments.wantsHelp()) {
      printVerbHelp(verb, out);
    } else {
      verb.run(arguments, out);
    }
    return kExitOk;
  } catch (const UsageError& error) {
    return reportUsageError(error.what(), verb.name, err);
  } catch (const Failure& failure) {
    err << "karno-appcast: " << failure.what() << '\n';
    return kExitFailed;
  }
}

}  // namespace

int run(std::span<const std::string> arguments, std::string_view version, std::ostream& out,
        std::ostream& err) {
  try {
    if (arguments.empty()) throw UsageError("what is to be done? (no verb given)");
    const std::string& first = arguments[0];
    const auto rest = arguments.subspan(1);
    if ((first == "--help" || first == "--version") && !rest.empty())
      throw UsageError(first + " stands alone");
    if (first == "help" || first == "--help") return help(rest, out), kExitOk;
    if (first == "--version") return out << "karno-appcast " << version << '\n', kExitOk;
    if (first.starts_with('-')) throw UsageError("unknown option '" + first + "'");
    return runVerb(verbNamed(first), rest, out, err);
  } catch (const UsageError& error) {
    return reportUsageError(error.what(), "", err);
  }
}

}  // namespace karno::appcast
