#pragma once
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace karno::test {

// Holds children back until all is ready for them. Made before the first of them.
class StartSignal {
 public:
  StartSignal() {
    if (::pipe(ends_) != 0) ends_[0] = ends_[1] = -1;
  }
  StartSignal(const StartSignal&) = delete;
  StartSignal& operator=(const StartSignal&) = delete;
  ~StartSignal() {
    give();
    ::close(ends_[0]);
  }

  // In a child: until the parent gives the signal.
  void wait() {
    char byte = 0;
    give();
    while (::read(ends_[0], &byte, 1) > 0) continue;
  }

  void give() {
    if (ends_[1] >= 0) ::close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  int ends_[2] = {-1, -1};
};

// Runs the function in a child made by fork() and ends it without any clean-up; waits for it in the
// destructor.
class ForkedProcess {
 public:
  explicit ForkedProcess(const std::function<int()>& body) : pid_(::fork()) {
    if (pid_ == 0) ::_exit(body());
  }
  ForkedProcess(const ForkedProcess&) = delete;
  ForkedProcess& operator=(const ForkedProcess&) = delete;
  ~ForkedProcess() { exitStatus(); }

  int exitStatus() {
    if (pid_ > 0) {
      int status = 0;
      ::waitpid(pid_, &status, 0);
      status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      pid_ = -1;
    }
    return status_;
  }

 private:
  pid_t pid_;
  int status_ = -1;
};

}  // namespace karno::test
