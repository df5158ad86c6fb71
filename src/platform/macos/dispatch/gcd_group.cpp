#include "platform/macos/dispatch/gcd_group.h"

#include <algorithm>

namespace karno::platform {

GCDGroup::GCDGroup() : group_(dispatch_group_create()) {}

void GCDGroup::enter() { dispatch_group_enter(group_.get()); }

void GCDGroup::leave() { dispatch_group_leave(group_.get()); }

bool GCDGroup::wait(std::int64_t nanoseconds) {
  // A moment beyond the clock's range is the end of time to dispatch_time().
  const dispatch_time_t end = dispatch_time(DISPATCH_TIME_NOW, std::max<std::int64_t>(nanoseconds, 0));
  return dispatch_group_wait(group_.get(), end) == 0;
}

}  // namespace karno::platform
