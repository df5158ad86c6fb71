#include "platform/system_path.h"

namespace karno::platform {

std::string systemPath(std::string_view path) { return std::string(path); }

}  // namespace karno::platform
