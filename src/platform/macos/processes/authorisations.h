#pragma once
#include <memory>

#include "platform/authorisations.h"

namespace karno::platform {

// The Security framework. Its function that runs a command with privileges is deprecated since 10.7, so it is
// looked up by name in what is loaded, once, when it is first wanted, and may be missing one day.
class SecurityAuthorisations final : public Authorisations {
 public:
  SecurityAuthorisations();
  std::unique_ptr<Authorisation> create() override;

  class PrivilegedExecution;

 private:
  const std::shared_ptr<PrivilegedExecution> execution_;
};

}  // namespace karno::platform
