#include "platform/linux/updater/installer_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <string_view>

#include "platform/linux/updater/installer_answer.h"
#include "platform/linux/updater/update_errors.h"
#include "platform/posix/processes/spawn.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

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

// Hears an installer to its end, and ends it when nobody wants its work any more or when it has fallen
// silent.
class Conversation {
 public:
  Conversation(int output, pid_t installer, const Progress& progress, const InstallerWaits& waits)
      : output_(output), installer_(installer), progress_(progress), waits_(waits) {}

  InstallerAnswer hear() {
    while (readWhatCame()) look();
    // It has nothing more to say. Whoever closes the output without ending is not waited for.
    ::kill(installer_, SIGKILL);
    return answer_;
  }

 private:
  using Clock = std::chrono::steady_clock;

  // False at the end of the output.
  bool readWhatCame() {
    pollfd watched{.fd = output_, .events = POLLIN, .revents = 0};
    const auto wait = static_cast<int>(waits_.look.count());
    if (retryOnInterrupt([&] { return ::poll(&watched, 1, wait); }) == 0) return true;
    const ssize_t count = retryOnInterrupt([&] { return ::read(output_, buffer_.data(), buffer_.size()); });
    if (count <= 0) return false;
    lastHeard_ = Clock::now();
    lines_.add({buffer_.data(), static_cast<std::size_t>(count)}, [this](std::string_view line) {
      if (const auto amount = answer_.take(line)) tell(*amount);
    });
    return true;
  }

  void tell(const InstallerAnswer::Amount& amount) {
    amount_ = amount;
    if (!progress_(amount.done, amount.total)) end();
  }

  // Also while it is silent.
  void look() {
    if (!endingSince_) tell(amount_);
    if (Clock::now() - lastHeard_ > waits_.silence) end();
    if (endingSince_ && Clock::now() - *endingSince_ > waits_.ending) ::kill(installer_, SIGKILL);
  }

  void end() {
    if (endingSince_) return;
    endingSince_ = Clock::now();
    ::kill(installer_, SIGTERM);
  }

  const int output_;
  const pid_t installer_;
  const Progress& progress_;
  const InstallerWaits waits_;
  InstallerAnswer answer_;
  InstallerAnswer::Amount amount_;
  Lines lines_;
  std::array<char, 4096> buffer_ = {};
  Clock::time_point lastHeard_ = Clock::now();
  std::optional<Clock::time_point> endingSince_;
};

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

  const InstallerAnswer answer = Conversation(output.get(), installer.value(), progress, waits_).hear();
  retryOnInterrupt([&] { return ::waitpid(installer.value(), nullptr, 0); });
  return answer.outcome();
}

// The installer outlives this process, so nobody here waits for it.
std::optional<Error> InstallerProcess::installAfterQuit(const InstallOrder& order) {
  std::vector<std::string> arguments = {"install",    "--new",   order.newBundle,           "--bundle",
                                        order.bundle, "--after", std::to_string(::getpid())};
  if (!order.touchfile.empty()) arguments.insert(arguments.end(), {"--touch-file", order.touchfile});
  if (order.relaunch) arguments.emplace_back("--relaunch");
  const auto installer = spawn({.executablePath = program(), .arguments = arguments});
  if (!installer) return installer.error();
  return std::nullopt;
}

}  // namespace karno::platform::updates
