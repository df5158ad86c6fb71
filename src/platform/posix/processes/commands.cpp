#include "platform/posix/processes/commands.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/posix/processes/spawn.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

constexpr std::size_t kPieceBytes = 16U << 10U;

struct Pipe {
  ScopedDescriptor reader;
  ScopedDescriptor writer;
};

Result<Pipe> makePipe() {
  std::array<int, 2> ends = {};
  if (::pipe(ends.data()) != 0) return Error::posix(errno);
  Pipe pipe{.reader = ScopedDescriptor(ends[0]), .writer = ScopedDescriptor(ends[1])};
  for (const int end : ends) {
    if (::fcntl(end, F_SETFD, FD_CLOEXEC) != 0) return Error::posix(errno);
  }
  return pipe;
}

// Everything up to the end of the stream.
Result<std::string> readAll(int descriptor) {
  std::string bytes;
  std::array<char, kPieceBytes> piece = {};
  for (;;) {
    const ssize_t count = retryOnInterrupt([&] { return ::read(descriptor, piece.data(), piece.size()); });
    if (count < 0) return Error::posix(errno);
    if (count == 0) return bytes;
    bytes.append(piece.data(), static_cast<std::size_t>(count));
    if (bytes.size() > kCommandOutputBytesMax) return Error::posix(EFBIG);
  }
}

Result<TaskEnd> waitFor(pid_t child) {
  int status = 0;
  if (retryOnInterrupt([&] { return ::waitpid(child, &status, 0); }) != child) return Error::posix(errno);
  return endFromWaitStatus(status);
}

}  // namespace

Result<CommandEnd> PosixCommands::run(const TaskLaunch& command) {
  Result<Pipe> pipe = makePipe();
  if (!pipe) return pipe.error();
  const Result<std::int32_t> child = spawn(place_(command), pipe.value().writer.get());
  if (!child) return child.error();
  pipe.value().writer.reset();

  Result<std::string> output = readAll(pipe.value().reader.get());
  // A child that still writes is told so.
  pipe.value().reader.reset();
  const Result<TaskEnd> end = waitFor(child.value());
  if (!output) return output.error();
  if (!end) return end.error();
  return CommandEnd{.end = end.value(), .standardOutput = std::move(output.value())};
}

std::optional<Error> PosixCommands::start(const TaskLaunch& command) {
  const auto child = tasks_.launch(place_(command), [](const TaskEnd&) {});
  if (!child) return child.error();
  return std::nullopt;
}

}  // namespace karno::platform
