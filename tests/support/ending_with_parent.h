#pragma once
#include <string>
#include <vector>

namespace karno::test {

// The command, made so that it is told to end when the process that starts it is killed, where the system can
// do that.
std::vector<std::string> endingWithItsParent(const std::vector<std::string>& command);

}  // namespace karno::test
