#include <ostream>

#include "command_line/arguments.h"
#include "karnoctl/explain/explanation_text.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

int explain(const command_line::Arguments& arguments, const Context& context) {
  const Explanation explanation = gatherExplanation(context.platform());
  context.out << (arguments.has("--json") ? explanationJson(explanation)
                                          : explanationText(explanation, context.outputIsUTF8));
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb explainVerb(Context& context) {
  return {
      .name = "explain",
      .synopsis = "[--json]",
      .summary = "say what the next start of the launcher does, and why",
      .help =
          R"(Says which build of the client the next start of the launcher runs, whether the system check lets
it, whether it asks to be moved, and what all of that rests on. Nothing is started, written or
logged. A build that is named on the launcher's own command line, as in a restart into the other
build, comes before the choice.

Options:
  --json   the same for scripts
)",
      .flags = {"--json"},
      .run = [&context](const auto& arguments) { return explain(arguments, context); }};
}

}  // namespace karno::karnoctl
