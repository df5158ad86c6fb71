#pragma once
#include <string>

namespace karno {

// Where the launcher's log lies. Asking makes neither folder nor file. Safe from any thread.
std::string wrapperLogDirectory();

std::string wrapperLogFile();

// The generation before.
std::string wrapperOldLogFile();

}  // namespace karno
