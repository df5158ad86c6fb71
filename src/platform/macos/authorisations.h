#pragma once
#include "platform/authorisations.h"

namespace karno::platform {

// The Security framework. Its function that runs a command with privileges is deprecated since 10.7, so it is
// looked up by name in what is loaded, once, and may be missing one day.
class SecurityAuthorisations final : public Authorisations {
 public:
  std::unique_ptr<Authorisation> create() override;
};

}  // namespace karno::platform
