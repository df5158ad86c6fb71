#pragma once
#include "platform/identifiers.h"

namespace karno::platform {

// Random UUIDs by NSUUID; empty, with a line on the console log, when it raises an exception.
class FoundationIdentifiers final : public Identifiers {
 public:
  std::string makeUUID() override;
};

}  // namespace karno::platform
