#pragma once
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace karno::test {

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
