#include "platform/linux/preferences/defaults_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/dispatch/threads.h"
#include "platform/linux/preferences/file_lock.h"
#include "platform/linux/preferences/last_stores.h"
#include "platform/linux/preferences/merge_into_file.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"
#include "platform/property_lists/property_lists.h"

namespace karno::platform {
namespace {

using std::chrono::milliseconds;

// Time stamps of files advance in steps of up to 10 ms (the kernel's tick), so a file that changed shortly
// before it was read may change again without its time stamps telling.
constexpr milliseconds kTrustAfter(50);

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

bool saysLocked(const Error& error) {
  return error.domain() == kPOSIXErrorDomain && error.code() == ETIMEDOUT;
}

}  // namespace

DefaultsFile::DefaultsFile(std::string path, Notices& notices, DefaultsFileWaits waits)
    : path_(std::move(path)), notices_(notices), waits_(waits) {}

DefaultsFile::~DefaultsFile() {
  LastStores::instance().remove(*this);
  {
    const std::scoped_lock lock(mutex_);
    isEnding_ = true;
  }
  retriesChanged_.notify_all();
  if (retries_.joinable()) retries_.join();
  storeForTheLastTime();
}

std::optional<Value> DefaultsFile::valueForKey(std::string_view key) {
  const std::scoped_lock lock(mutex_);
  if (const std::optional<Value>* const unstored = unstored_.find(key)) return *unstored;
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
  if (path_.empty()) return tellFailure(key, Error::posix(EINVAL));
  std::call_once(noted_, [this] { LastStores::instance().add(*this); });
  const milliseconds lockWaitMax = noteChange(value, key);
  if (const std::optional<Error> error = store(lockWaitMax)) beginLateness(*error, key);
}

// How long the lock may be waited for.
milliseconds DefaultsFile::noteChange(const std::optional<Value>& value, std::string_view key) {
  const std::scoped_lock lock(mutex_);
  unstored_.set(value, key);
  return isLate_ ? milliseconds(0) : waits_.lockMax;
}

std::optional<Error> DefaultsFile::store(milliseconds lockWaitMax) {
  if (const std::optional<Error> error = storeUnderLock(lockWaitMax)) return error;
  if (endLateness()) notices_.inform(fmt::format("UserDefaults: all that was set is now in {}", path_));
  return std::nullopt;
}

std::optional<Error> DefaultsFile::storeUnderLock(milliseconds lockWaitMax) {
  std::error_code code;
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), code);
  if (code) return Error::posix(code.value());
  FileLock fileLock(path_ + ".lock");
  if (const int error = fileLock.lock(lockWaitMax)) return Error::posix(error);

  UnstoredChanges::Snapshot snapshot;
  {
    const std::scoped_lock lock(mutex_);
    snapshot = unstored_.snapshot();
  }
  if (const std::optional<Error> error = mergeIntoFile(path_, snapshot.changes)) return error;
  const std::scoped_lock lock(mutex_);
  unstored_.wereStored(snapshot);
  return std::nullopt;
}

bool DefaultsFile::hasUnstored() {
  const std::scoped_lock lock(mutex_);
  return !unstored_.empty();
}

// Whether it was late and is so no more.
bool DefaultsFile::endLateness() {
  const std::scoped_lock lock(mutex_);
  return unstored_.empty() && std::exchange(isLate_, false);
}

void DefaultsFile::tellFailure(std::string_view key, const Error& error) {
  notices_.warn(fmt::format("UserDefaults: failed to store {} in {}. Reason: {}", key, path_,
                            error.localizedDescription()));
}

void DefaultsFile::beginLateness(const Error& error, std::string_view key) {
  {
    const std::scoped_lock lock(mutex_);
    // Another thread may have stored this one's value with its own.
    if (unstored_.empty() || std::exchange(isLate_, true)) return;
    startRetries();
  }
  retriesChanged_.notify_all();
  if (!saysLocked(error)) return tellFailure(key, error);
  notices_.warn(
      fmt::format("UserDefaults: {} is locked by another process; what is set here is stored later", path_));
}

// Without a thread, the next value and the end of the process are left.
void DefaultsFile::startRetries() {
  if (retries_.joinable()) return;
  try {
    retries_ = std::thread([this] { retryUntilTheEnd(); });
  } catch (const std::system_error&) {
  }
}

void DefaultsFile::retryUntilTheEnd() {
  nameThisThread("UserDefaults");
  std::unique_lock lock(mutex_);
  milliseconds pause = waits_.firstRetry;
  while (!isEnding_) {
    if (!isLate_) {
      retriesChanged_.wait(lock, [this] { return isLate_ || isEnding_; });
      pause = waits_.firstRetry;
    }
    if (retriesChanged_.wait_for(lock, pause, [this] { return isEnding_; })) return;
    lock.unlock();
    store(waits_.retryLockMax);
    lock.lock();
    pause = std::min(pause * 2, waits_.longestRetry);
  }
}

void DefaultsFile::synchronize() {
  if (hasUnstored()) store(waits_.lockMax);
  const std::string folder = std::filesystem::path(path_).parent_path().string();
  const ScopedDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.isOpen()) ::fsync(descriptor.get());
}

void DefaultsFile::storeForTheLastTime() {
  if (!hasUnstored()) return;
  const std::optional<Error> error = store(waits_.retryLockMax);
  if (!error || !saysLocked(*error)) return;  // any other reason has been told
  std::vector<std::string> keys;
  {
    const std::scoped_lock lock(mutex_);
    keys = unstored_.keys();
  }
  notices_.warn(
      fmt::format("UserDefaults: {} is locked to the end; not stored: {}", path_, fmt::join(keys, ", ")));
}

}  // namespace karno::platform
