#include "installer/progress.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "installer/interruption.h"
#include "platform/posix/files/whole_file.h"

namespace karno::installer {

ProgressLines::ProgressLines(int output, std::uint64_t totalBytes)
    : output_(output), totalBytes_(totalBytes), parent_(::getppid()) {}

bool ProgressLines::goesOn(std::uint64_t bytesRead) {
  if (!isWanted()) return false;
  // A zip's list of contents stands at its end and is read first.
  bytesRead_ = std::max(bytesRead_, std::min(bytesRead, totalBytes_));
  const auto now = std::chrono::steady_clock::now();
  if (lastLine_ && now - *lastLine_ < kProgressInterval) return true;
  lastLine_ = now;
  return say(fmt::format("progress {} {}", bytesRead_, totalBytes_));
}

// The kernel's signal for a parent's death comes already when the thread that started this process ends, so
// the parent is asked for instead.
bool ProgressLines::isWanted() const { return !wasInterrupted() && ::getppid() == parent_; }

bool ProgressLines::say(std::string_view line) const {
  return hasRoom() && platform::writeAll(output_, std::string(line) + "\n") == 0;
}

// A write to a full pipe would wait without looking.
bool ProgressLines::hasRoom() const {
  while (isWanted()) {
    pollfd watched{.fd = output_, .events = POLLOUT, .revents = 0};
    if (::poll(&watched, 1, static_cast<int>(kWantedInterval.count())) > 0) return true;
  }
  return false;
}

}  // namespace karno::installer
