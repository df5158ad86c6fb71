#pragma once
#include <string>

namespace karno::platform {

// The folder that is laid out like a Mac's disk: KARNO_MACHINE_ROOT, else karno/machine in the user's data
// folder. Without a "/" at the end. Read from the environment at every call; any thread.
std::string machineRoot();

}  // namespace karno::platform
