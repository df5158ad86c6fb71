#include "karnoctl/command_line.h"

#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {

command_line::Program program(std::string_view version, Context& context) {
  return {.name = "karnoctl",
          .version = version,
          .purpose = "Talks to the Karno launcher that runs in your session.",
          .exitStatuses = "0 done, 1 failed, 2 no log, 3 no launcher runs, 4 it does not quit",
          .verbs = {statusVerb(context), diagnoseVerb(context), logVerb(context), explainVerb(context),
                    selfCheckVerb(context), postVerb(context), quitVerb(context), reportVerb(context)}};
}

int run(std::span<const std::string> arguments, std::string_view version, Context& context) {
  return command_line::run(program(version, context), arguments, context.out, context.err);
}

}  // namespace karno::karnoctl
