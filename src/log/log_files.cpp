#include "log/log_files.h"

#include <vector>

#include "platform/platform.h"
#include "util/string_utils.h"

namespace karno {

std::string wrapperLogDirectory() {
  const std::vector<std::string> libraries = platform::host().files.searchPath(platform::UserFolder::Library);
  return u_stringByAppendingPathComponents(libraries.front(), {"Logs/Karno for macOS"});
}

std::string wrapperLogFile() {
  return u_stringByAppendingPathComponents(wrapperLogDirectory(), {"karno-wrapper.log"});
}

std::string wrapperOldLogFile() {
  return u_stringByAppendingPathComponents(wrapperLogDirectory(), {"karno-wrapper.old.log"});
}

}  // namespace karno
