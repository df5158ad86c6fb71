#include <ostream>

#include "command_line/arguments.h"
#include "karnoctl/explain/explanation_json.h"
#include "karnoctl/explain/explanation_text.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

int explain(const command_line::Arguments& arguments, const Context& context) {
  const Explanation explanation = gatherExplanation(context.platform());
  context.out << (arguments.has("--json") ? explanationJson(explanation) : explanationText(explanation));
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb explainVerb(Context& context) {
  return {
      .name = "explain",
      .synopsis = "[--json]",
      .summary = "say which build the launcher runs next, and why",
      .help =
          "Says which build of the client the next start of the launcher runs, whether the system check "
          "lets\n"
          "it, and what both rest on. Nothing is started, written or logged. A build that is named on the\n"
          "launcher's own command line, as in a restart into the other build, comes before all of this.\n"
          "\n"
          "Options:\n"
          "  --json   the same for scripts\n",
      .flags = {"--json"},
      .run = [&context](const auto& arguments) { return explain(arguments, context); }};
}

}  // namespace karno::karnoctl
