#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/error.h"
#include "platform/tasks.h"

namespace karno::platform {

enum class RightAnswer { Granted, Cancelled, Refused };

// May be combined by "or".
inline constexpr std::uint32_t kAuthorisationInteractionAllowed = 1;
inline constexpr std::uint32_t kAuthorisationExtendRights = 2;
inline constexpr std::uint32_t kAuthorisationPreAuthorise = 16;

// An authorisation reference: what the user has been allowed to do beyond his own rights. It is given back
// when this goes. Main thread only.
class Authorisation {
 public:
  virtual ~Authorisation() = default;

  // Asks for one right by its name; the system may show its password prompt and waits for the user.
  virtual RightAnswer copyRight(const std::string& right, std::uint32_t flags) = 0;

  // Whether this system can run commands with privileges at all.
  virtual bool canExecuteWithPrivileges() = 0;

  // Runs the command as the administrator, waits for a child to end and tells how. No other child of this
  // process should end meanwhile: it may be taken for the command. An error when the command could not be
  // started or waited for. Only after canExecuteWithPrivileges() was true.
  virtual Result<TaskEnd> executeWithPrivileges(const TaskLaunch& command) = 0;
};

class Authorisations {
 public:
  virtual ~Authorisations() = default;

  // A reference without rights; null when the system gives none.
  virtual std::unique_ptr<Authorisation> create() = 0;
};

}  // namespace karno::platform
