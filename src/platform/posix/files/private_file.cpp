#include "platform/private_file.h"

#include "platform/posix/files/whole_file.h"

namespace karno::platform {

std::optional<Error> writePrivateFile(const std::string& path, std::string_view bytes) {
  const int error = replaceFile(path, bytes);
  return error == 0 ? std::nullopt : std::optional(Error::posix(error));
}

}  // namespace karno::platform
