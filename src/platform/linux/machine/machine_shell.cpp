#include "platform/linux/machine/machine_shell.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>
#include <vector>

#include "platform/linux/machine/machine_commands.h"
#include "platform/posix/processes/stream_pieces.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Makes a descriptor the standard output of a child.
class StandardOutputTo {
 public:
  explicit StandardOutputTo(int descriptor) {
    ::posix_spawn_file_actions_init(&actions_);
    error_ = ::posix_spawn_file_actions_adddup2(&actions_, descriptor, STDOUT_FILENO);
  }
  StandardOutputTo(const StandardOutputTo&) = delete;
  StandardOutputTo& operator=(const StandardOutputTo&) = delete;
  ~StandardOutputTo() { ::posix_spawn_file_actions_destroy(&actions_); }

  int error() const { return error_; }
  const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
  int error_ = 0;
};

Result<pid_t> startShell(const std::string& line, int output) {
  const StandardOutputTo setup(output);
  if (setup.error() != 0) return Error::posix(setup.error());
  std::vector<std::string> words = {"sh", "-c", lineForMachine(line)};
  std::vector<std::string> variables = environmentForMachine();
  pid_t child = -1;
  const int error = ::posix_spawnp(&child, shellOfMachine().c_str(), setup.actions(), nullptr,
                                   pointersTo(words).data(), pointersTo(variables).data());
  if (error != 0) return Error::posix(error);
  return child;
}

class MachinePipe final : public ShellPipe {
 public:
  MachinePipe(std::FILE* stream, pid_t child) : stream_(stream), child_(child) {}
  MachinePipe(const MachinePipe&) = delete;
  MachinePipe& operator=(const MachinePipe&) = delete;
  ~MachinePipe() override {
    if (stream_ != nullptr) close();
  }

  std::optional<std::string> readPiece() override { return platform::readPiece(stream_); }

  bool close() override {
    std::fclose(std::exchange(stream_, nullptr));
    return retryOnInterrupt([this] { return ::waitpid(child_, nullptr, 0); }) == child_;
  }

 private:
  std::FILE* stream_;
  const pid_t child_;
};

}  // namespace

Result<std::unique_ptr<ShellPipe>> MachineShell::open(const std::string& line) {
  // Close-on-exec from the start: no child of another thread keeps the pipe open.
  std::array<int, 2> ends = {};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return Error::posix(errno);
  ScopedDescriptor reader(ends[0]);
  const ScopedDescriptor writer(ends[1]);

  std::FILE* const stream = ::fdopen(reader.get(), "r");
  if (stream == nullptr) return Error::posix(errno);
  reader.release();
  const Result<pid_t> child = startShell(line, writer.get());
  if (!child) {
    std::fclose(stream);
    return child.error();
  }
  return std::unique_ptr<ShellPipe>(std::make_unique<MachinePipe>(stream, child.value()));
}

}  // namespace karno::platform
