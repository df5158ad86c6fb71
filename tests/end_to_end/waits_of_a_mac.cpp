// A library to be loaded before all others, which lets waitid() do what it does on macOS: asked for the end
// of a child and told to leave the child as it is, it also returns for one that is stopped, each time anew.
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" int waitid(idtype_t type, id_t id, siginfo_t* change, int options) {
  const bool isOnlyALook = (options & WNOWAIT) != 0;
  return static_cast<int>(
      ::syscall(SYS_waitid, type, id, change, isOnlyALook ? options | WSTOPPED : options, nullptr));
}
