#pragma once
#include "platform/date.h"

namespace karno::platform {

// The wall clock. Safe from any thread.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual Date now() const = 0;
};

}  // namespace karno::platform
