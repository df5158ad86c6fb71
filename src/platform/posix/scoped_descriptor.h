#pragma once
#include <unistd.h>

#include <utility>

namespace karno::platform {

// Owns one open file descriptor and closes it.
class ScopedDescriptor {
 public:
  ScopedDescriptor() = default;
  explicit ScopedDescriptor(int descriptor) : descriptor_(descriptor) {}
  ScopedDescriptor(ScopedDescriptor&& other) noexcept : descriptor_(other.release()) {}
  ScopedDescriptor& operator=(ScopedDescriptor&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ScopedDescriptor(const ScopedDescriptor&) = delete;
  ScopedDescriptor& operator=(const ScopedDescriptor&) = delete;
  ~ScopedDescriptor() { reset(); }

  bool isOpen() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  int release() { return std::exchange(descriptor_, -1); }

  void reset(int descriptor = -1) {
    // An interrupted close() has let go of the descriptor already on both systems: it is never repeated.
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = descriptor;
  }

 private:
  int descriptor_ = -1;
};

}  // namespace karno::platform
