#include "../support/ending_with_parent.h"

namespace karno::test {

// A Mac has no such command; the limit of each run ends what was left.
std::vector<std::string> endingWithItsParent(const std::vector<std::string>& command) { return command; }

}  // namespace karno::test
