#include "platform/posix/processes/popen_shell.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/posix/processes/stream_pieces.h"

namespace karno::platform {
namespace {

class PopenPipe final : public ShellPipe {
 public:
  explicit PopenPipe(std::FILE* stream) : stream_(stream) {}
  PopenPipe(const PopenPipe&) = delete;
  PopenPipe& operator=(const PopenPipe&) = delete;
  ~PopenPipe() override {
    if (stream_ != nullptr) close();
  }

  std::optional<std::string> readPiece() override { return platform::readPiece(stream_); }
  bool close() override { return ::pclose(std::exchange(stream_, nullptr)) != -1; }

 private:
  std::FILE* stream_;
};

}  // namespace

Result<std::unique_ptr<ShellPipe>> PopenShell::open(const std::string& line) {
  const std::scoped_lock lock(opening_);
  // popen() leaves errno alone when it runs out of memory for its own record.
  errno = ENOMEM;
  std::FILE* const stream = ::popen(line.c_str(), "r");
  if (stream == nullptr) return Error::posix(errno);
  ::fcntl(::fileno(stream), F_SETFD, FD_CLOEXEC);
  return std::unique_ptr<ShellPipe>(std::make_unique<PopenPipe>(stream));
}

}  // namespace karno::platform
