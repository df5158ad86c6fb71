#pragma once
#include <cstdint>

namespace karno::test {

// While it lives, the permissions of files bind this thread also where it runs as root.
class PlainUser {
 public:
  PlainUser();
  ~PlainUser();
  PlainUser(const PlainUser&) = delete;
  PlainUser& operator=(const PlainUser&) = delete;

 private:
  std::uint32_t before_ = 0;  // the first 32 capabilities in effect
};

}  // namespace karno::test
