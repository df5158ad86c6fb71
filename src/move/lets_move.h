#pragma once
#include <string>
#include <string_view>

#include "platform/bundles.h"

namespace karno {

// Stands for the bundle whose strings table "MoveApplication" has the texts of the move.
class LetsMove {
 public:
  static const platform::Bundle& bundle();
};

// A text of the move in the user's language. The English text is the key, and what an untranslated one shows.
std::string moveText(std::string_view english);

}  // namespace karno
