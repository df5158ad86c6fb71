#pragma once
#include "platform/clock.h"

namespace karno::platform {

class SystemClock final : public Clock {
 public:
  Date now() const override;
};

// Suspends the calling thread; not at all for no time, less or what is no number. Signals do not cut it
// short.
void sleepFor(double seconds);

}  // namespace karno::platform
