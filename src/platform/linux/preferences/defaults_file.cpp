#include "platform/linux/preferences/defaults_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/files/property_list_file.h"
#include "platform/linux/preferences/file_lock.h"
#include "platform/posix/console_line.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"
#include "platform/property_lists/property_lists.h"

namespace karno::platform {
namespace {

// Time stamps of files advance in steps of up to 10 ms (the kernel's tick), so a file that changed shortly
// before it was read may change again without its time stamps telling.
constexpr std::chrono::milliseconds kTrustAfter(50);
constexpr std::chrono::seconds kLockWaitMax(10);
constexpr int kDamagedFilesMax = 1000;

bool isSameMoment(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         isSameMoment(a.st_mtim, b.st_mtim) && isSameMoment(a.st_ctim, b.st_ctim);
}

bool hasSettled(const struct stat& status, std::chrono::system_clock::time_point readAt) {
  const auto changed =
      std::chrono::seconds(status.st_ctim.tv_sec) + std::chrono::nanoseconds(status.st_ctim.tv_nsec);
  return readAt.time_since_epoch() - changed > kTrustAfter;
}

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

}  // namespace

DefaultsFile::DefaultsFile(std::string path) : path_(std::move(path)) {}

std::optional<Value> DefaultsFile::valueForKey(std::string_view key) {
  const std::scoped_lock lock(mutex_);
  if (const auto entry = unstored_.find(key); entry != unstored_.end()) return entry->second;
  if (!isCacheCurrent()) readAfresh();
  const auto entry = cache_.find(key);
  if (entry == cache_.end()) return std::nullopt;
  return entry->second;
}

bool DefaultsFile::isCacheCurrent() const {
  struct stat status = {};
  return cachedStatus_ && ::stat(path_.c_str(), &status) == 0 && isSameFile(status, *cachedStatus_);
}

void DefaultsFile::readAfresh() {
  cache_.clear();
  cachedStatus_.reset();

  const auto readAt = std::chrono::system_clock::now();
  const Result<WholeFile> file = readWholeFile(path_);
  if (!file) return;
  Result<Value::Dictionary> values = parseDictionary(file.value().bytes);
  if (values) cache_ = std::move(values.value());
  if (hasSettled(file.value().status, readAt)) cachedStatus_ = file.value().status;
}

void DefaultsFile::setValue(const std::optional<Value>& value, std::string_view key) {
  const std::scoped_lock lock(mutex_);
  if (!path_.empty()) unstored_.insert_or_assign(std::string(key), value);
  if (const std::optional<Error> error = store(unstored_)) {
    writeConsoleLine("UserDefaults: failed to store " + std::string(key) + " in " + path_ +
                     ". Reason: " + error->localizedDescription());
    return;
  }
  unstored_.clear();
}

std::optional<Error> DefaultsFile::store(const Changes& changes) {
  if (path_.empty()) return Error::posix(EINVAL);
  std::error_code code;
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), code);
  if (code) return Error::posix(code.value());

  FileLock fileLock(path_ + ".lock");
  if (const int error = fileLock.lock(kLockWaitMax)) return Error::posix(error);

  Result<Value::Dictionary> values = contentForWriting();
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
  if (const int error = replaceFile(path_, bytes.value())) return Error::posix(error);
  return std::nullopt;
}

Result<Value::Dictionary> DefaultsFile::contentForWriting() {
  Result<Value::Dictionary> values = readDictionary(path_);
  if (values) return values;
  if (saysMissing(values.error())) return Value::Dictionary();
  if (!isDamage(values.error())) return values;
  if (const int error = setAside(path_)) return Error::posix(error);
  return Value::Dictionary();
}

void DefaultsFile::synchronize() {
  const std::string folder = std::filesystem::path(path_).parent_path().string();
  const ScopedDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.isOpen()) ::fsync(descriptor.get());
}

}  // namespace karno::platform
