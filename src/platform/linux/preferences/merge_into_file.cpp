#include "platform/linux/preferences/merge_into_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/linux/files/property_list_file.h"
#include "platform/posix/console_line.h"
#include "platform/posix/files/whole_file.h"
#include "platform/property_lists/property_lists.h"

namespace karno::platform {
namespace {

constexpr int kDamagedFilesMax = 1000;

// What is wrong with the file itself, as against a passing trouble of the machine.
bool isDamage(const Error& error) {
  if (error.domain() != kPOSIXErrorDomain) return true;
  const auto codes = {EACCES, EISDIR, EINVAL, EFBIG, ELOOP};
  return std::find(codes.begin(), codes.end(), error.code()) != codes.end();
}

// Gives the file a name of its own; 0 or an errno.
int setAside(const std::string& path) {
  for (int number = 1; number <= kDamagedFilesMax; ++number) {
    const std::string aside = path + ".damaged-" + std::to_string(number);
    if (::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) {
      writeConsoleLine("UserDefaults: " + path + " is damaged; kept as " + aside);
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

Result<Value::Dictionary> contentForWriting(const std::string& path) {
  Result<Value::Dictionary> values = readDictionary(path);
  if (values) return values;
  if (saysMissing(values.error())) return Value::Dictionary();
  if (!isDamage(values.error())) return values;
  if (const int error = setAside(path)) return Error::posix(error);
  return Value::Dictionary();
}

}  // namespace

std::optional<Error> mergeIntoFile(const std::string& path, const Changes& changes) {
  Result<Value::Dictionary> values = contentForWriting(path);
  if (!values) return values.error();
  Value::Dictionary changed = values.value();
  for (const auto& [key, value] : changes) {
    if (value) {
      changed.insert_or_assign(key, *value);
    } else {
      changed.erase(key);
    }
  }
  if (changed == values.value()) return std::nullopt;

  const Result<std::string> bytes = propertyListXML(Value(std::move(changed)));
  if (!bytes) return bytes.error();
  if (const int error = replaceFile(path, bytes.value())) return Error::posix(error);
  return std::nullopt;
}

}  // namespace karno::platform
