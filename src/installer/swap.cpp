#include "installer/swap.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::installer {
namespace {

int move(const std::string& from, const std::string& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

// What file systems and older kernels answer that do not know the exchange.
bool isUnknownCall(int error) {
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EXDEV;
}

int bringToDisk(const std::string& folder) {
  const platform::ScopedDescriptor descriptor(
      platform::retryOnInterrupt([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!descriptor.isOpen()) return errno;
  return ::fsync(descriptor.get()) == 0 ? 0 : errno;
}

std::string folderOf(const std::string& path) { return std::filesystem::path(path).parent_path().string(); }

}  // namespace

Swap::Swap(std::string newBundle, std::string bundle, Exchange exchange)
    : newBundle_(std::move(newBundle)), bundle_(std::move(bundle)), exchange_(std::move(exchange)) {}

int Swap::swap() {
  const int error = exchange_(newBundle_, bundle_);
  if (error == 0) oldBundle_ = newBundle_;
  return isUnknownCall(error) ? moveAsideAndIn() : error;
}

int Swap::moveAsideAndIn() {
  // A folder may take the place of an empty one, so the name is ours before anything moves there.
  std::string aside = bundle_ + ".old-XXXXXX";
  if (::mkdtemp(aside.data()) == nullptr) return errno;
  if (const int error = move(bundle_, aside)) {
    ::rmdir(aside.c_str());
    return error;
  }
  if (const int error = move(newBundle_, bundle_)) {
    if (move(aside, bundle_) != 0) oldBundle_ = aside;
    return error;
  }
  oldBundle_ = aside;
  return 0;
}

int Swap::swapBack() {
  int error = 0;
  if (oldBundle_ == newBundle_) {
    error = exchange_(newBundle_, bundle_);
  } else {
    error = move(bundle_, newBundle_);
    if (error == 0) error = move(oldBundle_, bundle_);
  }
  if (error == 0) oldBundle_.clear();
  return error;
}

int Swap::makeDurable() const {
  if (const int error = bringToDisk(folderOf(bundle_))) return error;
  return bringToDisk(folderOf(newBundle_));
}

}  // namespace karno::installer
