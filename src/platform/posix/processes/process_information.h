#pragma once
#include <cstdint>
#include <string>
#include <vector>

// What the system tells of processes. Any thread.
namespace karno::platform {

// The name that the system keeps for a process, which may be cut short; empty when there is none.
std::string shortNameOfProcess(std::int32_t processIdentifier);

// Those of this process, its own name first.
std::vector<std::string> programArguments();

// The file that this process runs; empty when the system does not tell.
std::string programPath();

}  // namespace karno::platform
