#include "karnoctl/verbs/explain_verb.h"

#include <algorithm>
#include <ostream>

#include "karnoctl/explain/explanation_json.h"
#include "karnoctl/explain/explanation_text.h"
#include "karnoctl/verbs/options.h"

namespace karno::karnoctl {
namespace {

std::string explainHelp() {
  return "Says which build of the client the next start of the launcher runs, whether the system check lets\n"
         "it, and what both rest on. Nothing is started, written or logged. A build that is named on the\n"
         "launcher's own command line, as in a restart into the other build, comes before all of this.\n"
         "\n"
         "Options:\n"
         "  --json   the same for scripts\n";
}

int runExplain(std::span<const std::string> arguments, Context& context) {
  std::vector<std::string> words(arguments.begin(), arguments.end());
  const bool asJson = std::erase(words, "--json") > 0;
  if (const auto status = settledByHelpOrUsage("explain", words, context)) return *status;
  const Explanation explanation = gatherExplanation(context.platform());
  context.out << (asJson ? explanationJson(explanation) : explanationText(explanation));
  return kExitOk;
}

}  // namespace

Verb explainVerb() {
  return {.name = "explain",
          .synopsis = "[--json]",
          .summary = "say which build the launcher runs next, and why",
          .help = explainHelp,
          .run = runExplain};
}

}  // namespace karno::karnoctl
