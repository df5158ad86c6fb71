#pragma once
#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace karno::bench {

// Starts a command whose standard output goes nowhere. -1 when there is none.
pid_t startCommand(std::vector<std::string> words);

// Waits for a process; absent unless it exited.
std::optional<int> exitStatusOf(pid_t process);

// From the start to the exit; negative when it did not exit with this status.
double secondsOfCommand(const std::vector<std::string>& words, int expectedStatus = 0);

}  // namespace karno::bench
