#include "ipc/karno_process_utils.h"

#include "platform/platform.h"

namespace karno {

std::string KarnoProcessUtils::stringForProcessNameForPid(std::int32_t processIdentifier) {
  const std::string name = platform::host().processes.name(processIdentifier);
  return name.empty() ? "Unknown" : name;
}

}  // namespace karno
