#pragma once
#include "platform/identifiers.h"

namespace karno::platform {

// Random UUIDs by NSUUID.
class FoundationIdentifiers final : public Identifiers {
 public:
  std::string makeUUID() override;
};

}  // namespace karno::platform
