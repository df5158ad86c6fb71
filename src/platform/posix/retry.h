#pragma once
#include <cerrno>

namespace karno::platform {

// Repeats a system call that returns -1 for as long as only a signal handler interrupted it.
template <class Call>
auto retryOnInterrupt(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

}  // namespace karno::platform
