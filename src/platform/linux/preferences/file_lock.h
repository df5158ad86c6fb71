#pragma once
#include <chrono>
#include <string>

#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {

// An exclusive lock between processes, and between threads that each have a FileLock of their own. The lock
// file is made when it is missing and stays. Released by the destructor, or by the kernel when the process
// ends.
class FileLock {
 public:
  explicit FileLock(std::string path) : path_(std::move(path)) {}

  // 0 or an errno; ETIMEDOUT when another holder kept it all the time.
  int lock(std::chrono::milliseconds waitMax);

 private:
  const std::string path_;
  ScopedDescriptor file_;
};

}  // namespace karno::platform
