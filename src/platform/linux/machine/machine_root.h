#pragma once
#include <string>
#include <string_view>

namespace karno::platform {

// The folder that is laid out like a Mac's disk: KARNO_MACHINE_ROOT, else karno/machine in the user's data
// folder. Without a "/" at the end. Read from the environment at every call; any thread.
std::string machineRoot();

// The root of a process whose KARNO_MACHINE_ROOT has that value; empty: it has none.
std::string machineRootNamed(std::string_view value);

}  // namespace karno::platform
