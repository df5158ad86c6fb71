#include "platform/linux/files/property_list_file.h"

#include <cerrno>

#include "platform/posix/files/whole_file.h"
#include "platform/property_lists/property_lists.h"

namespace karno::platform {

Result<Value::Dictionary> readDictionary(const std::string& path) {
  const Result<WholeFile> file = readWholeFile(path);
  if (!file) return file.error();
  return parseDictionary(file.value().bytes);
}

bool saysMissing(const Error& error) {
  return error.domain() == kPOSIXErrorDomain && (error.code() == ENOENT || error.code() == ENOTDIR);
}

}  // namespace karno::platform
