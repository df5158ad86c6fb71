#include "karnoctl/verbs/verbs.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>
#include <vector>

#include "karnoctl/verbs/explain_verb.h"
#include "karnoctl/verbs/log_verb.h"
#include "karnoctl/verbs/post_verb.h"
#include "karnoctl/verbs/self_check_verb.h"
#include "karnoctl/verbs/status_verb.h"

namespace karno::karnoctl {

std::span<const Verb> allVerbs() {
  static const std::vector<Verb> verbs{statusVerb(), logVerb(), explainVerb(), selfCheckVerb(), postVerb()};
  return verbs;
}

const Verb* findVerb(std::string_view name) {
  const auto verbs = allVerbs();
  const auto found =
      std::find_if(verbs.begin(), verbs.end(), [&](const Verb& verb) { return verb.name == name; });
  return found == verbs.end() ? nullptr : &*found;
}

int reportUsageError(const UsageError& error, Context& context) {
  context.err << "karnoctl: " << error.text << "\nTry \"karnoctl "
              << (error.verb.empty() ? "--help" : "help " + error.verb) << "\".\n";
  return kExitUsage;
}

void printGeneralHelp(std::ostream& out) {
  out << "Usage: karnoctl VERB [ARGUMENT...]\n"
         "       karnoctl help [VERB]\n"
         "       karnoctl --help | --version\n"
         "\n"
         "Talks to the Karno launcher that runs in your session.\n"
         "\n"
         "Verbs:\n";
  for (const Verb& verb : allVerbs()) out << fmt::format("  {:<10} {}\n", verb.name, verb.summary);
  out << fmt::format("  {:<10} {}\n", "help", "say how a verb is used")
      << "\n"
         "Exit status: 0 done, 1 failed, 3 no launcher runs (status), 64 wrong usage.\n";
}

void printVerbHelp(const Verb& verb, std::ostream& out) {
  out << "Usage: karnoctl " << verb.name << (verb.synopsis.empty() ? "" : " ") << verb.synopsis << "\n\n"
      << verb.help();
}

}  // namespace karno::karnoctl
