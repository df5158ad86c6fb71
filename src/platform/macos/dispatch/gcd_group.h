#pragma once
#include <dispatch/dispatch.h>

#include <memory>
#include <type_traits>

#include "platform/dispatch.h"

namespace karno::platform {

// A group of Grand Central Dispatch. It may be let go while somebody is inside: GCD keeps it until the last
// one has left.
class GCDGroup final : public DispatchGroup {
 public:
  GCDGroup();
  void enter() override;
  void leave() override;
  bool wait(std::int64_t nanoseconds) override;

 private:
  struct Release {
    void operator()(dispatch_group_t group) const { dispatch_release(group); }
  };

  const std::unique_ptr<std::remove_pointer_t<dispatch_group_t>, Release> group_;
};

}  // namespace karno::platform
