#pragma once
#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include "platform/posix/scoped_descriptor.h"

namespace karno::test {

// The status is the exit status, or 128 and the signal's number.
struct ProgramEnd {
  int status = 0;
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs a command to its end.
ProgramEnd runProgram(const std::vector<std::string>& command);

std::string lastLineOf(const std::string& text);

// Runs a command and kills it so long after its start, unless it has ended by then.
void killDuring(const std::vector<std::string>& command, std::chrono::microseconds delay);

// How long the command runs when it is left alone.
std::chrono::microseconds durationOf(const std::vector<std::string>& command);

// A program whose standard output is a pipe with room for one line, which is full at its start: the program
// cannot come to its end without this reader.
class HeldProgram {
 public:
  // `withParent`: between the test and the program stands a process that can be killed.
  explicit HeldProgram(const std::vector<std::string>& command, bool withParent = false);
  ~HeldProgram();
  HeldProgram(const HeldProgram&) = delete;
  HeldProgram& operator=(const HeldProgram&) = delete;

  // Takes lines until the file is there; the program is held again then.
  void letRunUntilThereIs(const std::string& path);

  // It has set its signals by then.
  void waitUntilItLeadsItsSession() const;

  void signal(int number) const;
  void killParent() const;
  void stopReading();

  // False when it has not ended after a while.
  bool waitForEnd() const;

  // As of ProgramEnd; only without a parent.
  int status() const;

 private:
  void takeALine() const;

  platform::ScopedDescriptor reader_;
  pid_t parent_ = -1;
  pid_t process_ = -1;
};

}  // namespace karno::test
