#include "platform/linux/updater/installer_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>

#include "platform/linux/updater/installer_answer.h"
#include "platform/linux/updater/update_errors.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"
#include "platform/posix/spawn.h"

namespace karno::platform::updates {
namespace {

constexpr std::size_t kLineBytesMax = 8192;

// Tells complete lines apart. What is longer than any line of the installer is not kept.
class Lines {
 public:
  template <class Take>
  void add(std::string_view bytes, Take take) {
    for (const char c : bytes) {
      if (c == '\n') {
        take(line_);
        line_.clear();
      } else if (line_.size() < kLineBytesMax) {
        line_ += c;
      }
    }
  }

 private:
  std::string line_;
};

InstallerAnswer read(int output, pid_t installer, const Progress& progress) {
  InstallerAnswer answer;
  Lines lines;
  std::array<char, 4096> buffer = {};
  const auto take = [&](std::string_view line) {
    const auto amount = answer.take(line);
    if (amount && !progress(amount->done, amount->total)) ::kill(installer, SIGTERM);
  };
  while (true) {
    const ssize_t count = retryOnInterrupt([&] { return ::read(output, buffer.data(), buffer.size()); });
    if (count <= 0) return answer;
    lines.add({buffer.data(), static_cast<std::size_t>(count)}, take);
  }
}

std::vector<std::string> argumentsFor(const UnpackRequest& request) {
  std::vector<std::string> arguments = {"unpack",          "--archive",    request.archive,   "--signature",
                                        request.signature, "--public-key", request.publicKey, "--bundle",
                                        request.bundle,    "--into",       request.folder};
  if (request.length) arguments.insert(arguments.end(), {"--length", std::to_string(*request.length)});
  return arguments;
}

}  // namespace

Result<std::string> InstallerProcess::unpack(const UnpackRequest& request, const Progress& progress) {
  std::array<int, 2> ends = {-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return Error::posix(errno);
  const ScopedDescriptor output(ends[0]);
  ScopedDescriptor input(ends[1]);
  const auto installer =
      spawn({.executablePath = program(), .arguments = argumentsFor(request)}, input.get());
  if (!installer) return installer.error();
  input.reset();

  const InstallerAnswer answer = read(output.get(), installer.value(), progress);
  retryOnInterrupt([&] { return ::waitpid(installer.value(), nullptr, 0); });
  return answer.outcome();
}

// The installer outlives this process, so nobody here waits for it.
std::optional<Error> InstallerProcess::installAfterQuit(const std::string& newBundle,
                                                        const std::string& bundle, bool relaunch) {
  std::vector<std::string> arguments = {
      "install", "--new", newBundle, "--bundle", bundle, "--after", std::to_string(::getpid())};
  if (relaunch) arguments.emplace_back("--relaunch");
  const auto installer = spawn({.executablePath = program(), .arguments = arguments});
  if (!installer) return installer.error();
  return std::nullopt;
}

}  // namespace karno::platform::updates
