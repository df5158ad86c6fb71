#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace karno::platform {

// What waiting for a child came to.
struct WaitResult {
  std::int32_t result = 0;  // what waitpid() returned
  int error = 0;            // errno right after it when it returned -1
};

// What the kernel knows about processes. Safe from any thread.
class Processes {
 public:
  virtual ~Processes() = default;

  virtual std::int32_t currentProcessIdentifier() const = 0;
  virtual std::int32_t parentProcessIdentifier() const = 0;

  // The launcher's whole argument list, the program path at index 0 included.
  virtual std::vector<std::string> arguments() const = 0;

  // The kernel's short name of a process, as a line (see text/one_line.h); empty when there is no such
  // process or it may not be asked.
  virtual std::string name(std::int32_t processIdentifier) const = 0;

  // Sends the termination signal. 0, or the errno value of the failure: ESRCH when there is no such process,
  // it was a child of Tasks that has been reaped (somebody else may have its identifier by now) or the
  // identifier is not positive, EPERM when it may not be signalled.
  virtual int terminate(std::int32_t processIdentifier) = 0;

  // waitpid() without options: blocks until the child has ended and reaps it. A child of Tasks that ends
  // while this waits is reaped here; its termination handler runs all the same. ECHILD at once when there is
  // no such child, it was reaped already or the identifier is not positive; interruptions are not reported.
  virtual WaitResult waitForChild(std::int32_t processIdentifier) = 0;
};

}  // namespace karno::platform
