#pragma once
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

#include "platform/posix/scoped_descriptor.h"
#include "scoped_environment.h"
#include "temporary_folder.h"

namespace karno::test {

// A session bus of its own for this process and its children, always at the same address.
class PrivateBus {
 public:
  PrivateBus() : environment_("DBUS_SESSION_BUS_ADDRESS", address()) { start(); }
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;
  ~PrivateBus() { stop(); }

  std::string address() const { return "unix:path=" + folder_ / "bus"; }

  // Makes the bus stand still as long as somebody does not let it go on. Any process.
  void halt() const { ::kill(pid_, SIGSTOP); }
  void waitUntilHalted() const { ::waitpid(pid_, nullptr, WUNTRACED); }
  void goOn() const { ::kill(pid_, SIGCONT); }

  // Once it returns, the bus takes connections.
  void start() {
    std::array<int, 2> ends = {};
    if (::pipe(ends.data()) != 0) return;
    platform::ScopedDescriptor reader(ends[0]);
    platform::ScopedDescriptor writer(ends[1]);
    const std::string listening = "--address=" + address();
    pid_ = ::fork();
    if (pid_ == 0) {
      ::dup2(writer.get(), STDOUT_FILENO);
      ::dup2(::open("/dev/null", O_WRONLY),
             STDERR_FILENO);  // it complains about limits that are no concern here
      ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1",
               listening.c_str(), nullptr);
      ::_exit(127);
    }
    writer.reset();

    for (char byte = 0; ::read(reader.get(), &byte, 1) == 1 && byte != '\n';) continue;
  }

  // At once, as when it is killed.
  void stop() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }

 private:
  const TemporaryFolder folder_;
  const ScopedEnvironment environment_;
  pid_t pid_ = -1;
};

}  // namespace karno::test
