#include "platform/linux/property_list_file.h"

#include <cerrno>
#include <utility>

#include "platform/posix/files/whole_file.h"

namespace karno::platform {

Result<Value::Dictionary> readDictionary(const PropertyLists& propertyLists, const std::string& path) {
  const Result<WholeFile> file = readWholeFile(path);
  if (!file) return file.error();
  return parseDictionary(propertyLists, file.value().bytes);
}

Result<Value::Dictionary> parseDictionary(const PropertyLists& propertyLists, std::string_view bytes) {
  const Result<Value> root = propertyLists.parse(bytes);
  if (!root) return root.error();
  const auto* dictionary = root.value().get<Value::Dictionary>();
  if (dictionary == nullptr) return Error::posix(EINVAL);
  return *dictionary;
}

bool saysMissing(const Error& error) {
  return error.domain() == kPOSIXErrorDomain && (error.code() == ENOENT || error.code() == ENOTDIR);
}

}  // namespace karno::platform
