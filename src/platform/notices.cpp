#include "platform/notices.h"

#include <utility>

namespace karno::platform {

Notices::Notices(Taker taker) : taker_(std::make_shared<const Taker>(std::move(taker))) {}

void Notices::setTaker(Taker taker) {
  auto next = std::make_shared<const Taker>(std::move(taker));
  const std::scoped_lock lock(mutex_);
  taker_.swap(next);
}

void Notices::tell(Level level, std::string_view line) {
  std::shared_ptr<const Taker> taker;
  {
    const std::scoped_lock lock(mutex_);
    taker = taker_;
  }
  (*taker)(level, line);
}

}  // namespace karno::platform
