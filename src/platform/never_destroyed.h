#pragma once
#include <new>
#include <utility>

namespace karno::platform {

// Holds an object that is made in place and never destroyed, so that threads which run until the very end of
// the process may use it while static objects are being torn down.
template <class T>
class NeverDestroyed {
 public:
  template <class... Args>
  explicit NeverDestroyed(Args&&... args) {
    ::new (static_cast<void*>(storage_)) T(std::forward<Args>(args)...);
  }
  NeverDestroyed(const NeverDestroyed&) = delete;
  NeverDestroyed& operator=(const NeverDestroyed&) = delete;

  T& get() { return *std::launder(reinterpret_cast<T*>(storage_)); }
  T& operator*() { return get(); }
  T* operator->() { return &get(); }

 private:
  alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace karno::platform
