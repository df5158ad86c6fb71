#include "ending_with_parent.h"

namespace karno::test {

std::vector<std::string> endingWithItsParent(const std::vector<std::string>& command) {
  std::vector<std::string> words{"setpriv", "--pdeathsig", "TERM", "--"};
  words.insert(words.end(), command.begin(), command.end());
  return words;
}

}  // namespace karno::test
