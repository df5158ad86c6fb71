#pragma once
#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/posix/scoped_descriptor.h"

namespace karno::bench {

// On the clock that all processes share.
std::int64_t monotonicNanoseconds();

// A running program whose standard error is read line by line. Its end kills it.
class SpokenProgram {
 public:
  explicit SpokenProgram(const std::vector<std::string>& command);
  ~SpokenProgram();
  SpokenProgram(const SpokenProgram&) = delete;
  SpokenProgram& operator=(const SpokenProgram&) = delete;

  struct Line {
    std::string text;
    std::int64_t readNanoseconds = 0;  // when it had been read
  };

  // The next line that has `words` in it; those before it are passed over. Absent when none comes within ten
  // seconds or the program has ended.
  std::optional<Line> lineWith(const std::string& words);

  // When it ended; absent when it still runs after ten seconds. To be asked once.
  std::optional<std::int64_t> endNanoseconds();

  pid_t processIdentifier() const { return processIdentifier_; }

 private:
  std::optional<Line> nextLine(std::int64_t giveUpAt);

  platform::ScopedDescriptor output_;
  std::string unread_;
  std::int64_t readNanoseconds_ = 0;
  pid_t processIdentifier_ = -1;
};

}  // namespace karno::bench
