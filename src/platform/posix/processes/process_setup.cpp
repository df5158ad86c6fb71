#include "platform/posix/processes/process_setup.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace karno::platform {

void setUpProcess() {
  ::signal(SIGPIPE, SIG_IGN);
  ::signal(SIGXFSZ, SIG_IGN);
  ::signal(SIGCHLD, SIG_DFL);

  // open() takes the lowest free number, and the streams below are open already.
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF) ::open("/dev/null", O_RDWR);
  }
}

}  // namespace karno::platform
