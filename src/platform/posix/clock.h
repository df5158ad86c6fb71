#pragma once
#include "platform/clock.h"

namespace karno::platform {

class SystemClock final : public Clock {
 public:
  Date now() const override;
};

}  // namespace karno::platform
