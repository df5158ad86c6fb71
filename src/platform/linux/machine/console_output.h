#pragma once
#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string_view>

#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {

// Lines to a descriptor that this process shares with others and that may be a pipe or a terminal which
// nobody reads. Whoever writes is held up for a moment at most; then lines are dropped until bytes are taken
// again, and the next line is preceded by one that says how many there were. Errors have nowhere to be
// reported: a line that is refused for good, since the descriptor is closed or the reader gone, is dropped.
//
// O_NONBLOCK belongs to what every process with the descriptor shares, and children would trip over it. So a
// pipe and a terminal are opened once more, for this process alone, without blocking; a socket takes each
// message without. Where opening is refused, as with a pipe of another user, the descriptor is asked for room
// first and given no more than a pipe with room takes whole. That can still block when another process fills
// the room in between, but it is that or nothing. A thread of its own would hold up nobody, but a line would
// no longer be there when the call returns, and be lost in a crash, which is when it is wanted most.
//
// One write() per line, so that lines of several threads and processes do not mix; a rest is only left over
// when no more is taken in one go. Safe from any thread.
class ConsoleOutput {
 public:
  // The descriptor is not owned. `waitMax` is for all lines together: what was waited is given back at a
  // tenth of the time that passes.
  explicit ConsoleOutput(int descriptor, std::chrono::milliseconds waitMax = std::chrono::seconds(1));

  void writeLine(std::string_view line);

 private:
  using Clock = std::chrono::steady_clock;

  enum class Outcome { Written, NoRoom, Refused };
  enum class Way { Plain, OwnDescription, Messages, AfterAsking };

  struct Identity {
    dev_t device = 0;
    ino_t node = 0;
    bool operator==(const Identity&) const = default;
  };

  void lookAtDescriptor();
  void write(std::string_view text);
  bool tellWhatWasNotShown();
  Outcome writeWhole(std::string_view bytes);
  ssize_t offer(std::string_view bytes);
  bool waitForRoom();

  const int descriptor_;
  const std::chrono::milliseconds waitMax_;

  // What never blocks, a file or /dev/null, is written to without a lock and not looked at again: log lines
  // come through here. Any order will do, since both ways are right for it.
  std::atomic<bool> isPlain_{false};

  std::mutex mutex_;  // for all below
  std::optional<Identity> identity_;
  Way way_ = Way::Plain;
  ScopedDescriptor own_;
  std::uint64_t notShown_ =
      0;                // lines since the last one that was; while there are any, nothing is waited for
  bool isCut_ = false;  // the last one is there in part
  Clock::duration waitLeft_{};
  Clock::time_point waitCountedTo_{};
};

}  // namespace karno::platform
