#include "../contract/plain_user.h"

#include <unistd.h>

#include <stdexcept>

namespace karno::test {

// macOS lets root lay down no single right, so these tests are not for root.
PlainUser::PlainUser() : before_(::geteuid()) {
  if (before_ == 0) throw std::runtime_error("root passes over permissions: run the tests as somebody else");
}

PlainUser::~PlainUser() = default;

}  // namespace karno::test
