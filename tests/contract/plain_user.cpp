#include "plain_user.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace karno::test {
namespace {

constexpr std::uint32_t kPassingOverPermissions = 1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH;

// Puts these of the first 32 capabilities into effect and answers those that were.
std::uint32_t exchangeEffective(std::uint32_t kept) {
  __user_cap_header_struct header = {.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets = {};
  bool isDone = ::syscall(SYS_capget, &header, sets.data()) == 0;
  const std::uint32_t before = sets[0].effective;
  sets[0].effective = kept & sets[0].permitted;
  isDone = isDone && ::syscall(SYS_capset, &header, sets.data()) == 0;
  if (!isDone) throw std::runtime_error("the rights of this thread cannot be changed");
  return before;
}

}  // namespace

PlainUser::PlainUser() : before_(exchangeEffective(~kPassingOverPermissions)) {}

PlainUser::~PlainUser() { exchangeEffective(before_); }

}  // namespace karno::test
