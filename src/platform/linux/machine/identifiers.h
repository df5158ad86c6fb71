#pragma once
#include "platform/identifiers.h"

namespace karno::platform {

// Random UUIDs from the kernel's random numbers. GNUstep base 1.28 has NSUUID, but its UUIDs do not say that
// they are random ones (version 4 of RFC 4122), as a Mac's do.
class RandomIdentifiers final : public Identifiers {
 public:
  std::string makeUUID() override;
};

}  // namespace karno::platform
