#include "platform/system_path.h"

namespace karno::platform {

// The fake machine's disk is laid out like a Mac's.
std::string systemPath(std::string_view path) { return std::string(path); }

}  // namespace karno::platform
