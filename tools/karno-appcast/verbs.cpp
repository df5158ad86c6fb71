#include "karno-appcast/verbs.h"

#include <vector>

namespace karno::appcast {

std::span<const Verb> allVerbs() {
  static const std::vector<Verb> verbs{keysVerb(), publicKeyVerb(), signVerb(), verifyVerb(), feedVerb()};
  return verbs;
}

}  // namespace karno::appcast
