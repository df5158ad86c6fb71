#pragma once
#include <string>

namespace karno {

// Whether an application runs that was started from the bundle at that path. Waits for a shell on systems too
// old to know.
bool isApplicationAtPathRunning(const std::string& path);

}  // namespace karno
