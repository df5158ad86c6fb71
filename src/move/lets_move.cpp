#include "move/lets_move.h"

#include "platform/platform.h"

namespace karno {

const platform::Bundle& LetsMove::bundle() { return platform::host().bundles.mainBundle(); }

std::string moveText(std::string_view english) {
  return LetsMove::bundle().localisedString(english, "MoveApplication");
}

}  // namespace karno
