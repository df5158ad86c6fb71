#pragma once
#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace karno::test {

// A command that runs in the background, in a process group of its own. Its standard output and standard
// error go to one file, its standard input is empty. It is told to end when this goes, or when the test is
// killed.
class Subprocess {
 public:
  // `output` is made anew. Throws std::runtime_error when there is no such command.
  Subprocess(const std::vector<std::string>& command, const std::string& output);
  ~Subprocess();
  Subprocess(const Subprocess&) = delete;
  Subprocess& operator=(const Subprocess&) = delete;

  pid_t processIdentifier() const { return process_; }
  void signal(int number) const;

  // The exit status, or 128 and the signal's number; absent when it still runs at the end of the limit.
  std::optional<int> waitForEnd(std::chrono::seconds limit);

 private:
  pid_t process_ = -1;
  std::optional<int> status_;
};

struct CommandResult {
  std::optional<int> status;  // as of waitForEnd()
  std::string output;         // both streams
};

// Runs a command to its end, or ends it at the limit.
CommandResult runCommand(const std::vector<std::string>& command, std::chrono::seconds limit);

}  // namespace karno::test
