#include "karno-appcast/command_line.h"

#include "command_line/program.h"
#include "karno-appcast/verbs.h"

namespace karno::appcast {

int run(std::span<const std::string> arguments, std::string_view version, std::ostream& out,
        std::ostream& err) {
  const command_line::Program program{
      .name = "karno-appcast",
      .version = version,
      .purpose = "Signs releases of the launcher and writes the feed that offers them.",
      .exitStatuses = "0 done, 1 failed",
      .verbs = {keysVerb(out, err), publicKeyVerb(out), signVerb(out), verifyVerb(out), feedVerb(out),
                rotateVerb(out), checkVerb(out)}};
  return command_line::run(program, arguments, out, err);
}

}  // namespace karno::appcast
