#pragma once
#include <cstdint>
#include <vector>

#include "platform/distributed_notifications.h"

namespace karno::test {

// Where a sender's next notification was not the one that had to come next.
struct BurstCensus {
  std::vector<std::int64_t> next;
  std::int64_t total = 0;
  std::int64_t outOfOrder = 0;

  void count(const platform::DistributedNotification& heard) {
    auto& expected = next.at(static_cast<std::size_t>(*heard.userInfo.at("sender").get<std::int64_t>()));
    if (*heard.userInfo.at("number").get<std::int64_t>() != expected) ++outOfOrder;
    ++expected;
    ++total;
  }
};

}  // namespace karno::test
