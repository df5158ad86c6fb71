#pragma once
#include <pthread.h>

#include <cstddef>

namespace karno::test {

// Meanwhile no thread can be started: its stack would be larger than the address space.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 60U);
    pthread_setattr_default_np(&huge);
    pthread_attr_destroy(&huge);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;
  ~NoThreads() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }

 private:
  pthread_attr_t before_{};
};

}  // namespace karno::test
