#pragma once
#include "platform/authorisations.h"
#include "platform/commands.h"

namespace karno::platform {

// An administrator's rights by pkexec, which asks for the password itself: for the right, and then once more
// for each command unless the machine's rules say that it keeps an answer. The machine root's pkexec goes
// before the system's. The commands are always the system's own: nothing that the user could have changed is
// run.
class PkexecAuthorisations final : public Authorisations {
 public:
  explicit PkexecAuthorisations(Commands& commands) : commands_(commands) {}

  std::unique_ptr<Authorisation> create() override;

 private:
  Commands& commands_;
};

}  // namespace karno::platform
