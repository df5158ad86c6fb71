#pragma once
#include <memory>
#include <optional>
#include <string>

#include "platform/error.h"

namespace karno::platform {

// What a shell line prints on its standard output. One thread at a time. Its end closes what is still open.
class ShellPipe {
 public:
  virtual ~ShellPipe() = default;

  // The next piece, which ends after a newline, after 4095 bytes or at the end of the output: raw bytes up to
  // the first zero byte in it. Absent at the end. Waits for the command to print.
  virtual std::optional<std::string> readPiece() = 0;

  // Waits for the command to exit. False when its end cannot be learnt; its exit status does not count.
  // Called once, after the last piece.
  virtual bool close() = 0;
};

// The C library's pipe opener. Safe from any thread.
class Shell {
 public:
  virtual ~Shell() = default;

  // Hands the line to the system's shell; the error is of the POSIX domain. Standard error stays the
  // launcher's.
  virtual Result<std::unique_ptr<ShellPipe>> open(const std::string& line) = 0;
};

}  // namespace karno::platform
