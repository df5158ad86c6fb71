#include "platform/linux/files/folder_exchange.h"

#include <fcntl.h>
#include <stdio.h>

#include <cerrno>

namespace karno::platform {

int exchangeInOneStep(const std::string& one, const std::string& other) {
  return ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0 ? 0 : errno;
}

}  // namespace karno::platform
