#include "platform/linux/machine/console_output.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <string>

#include "platform/posix/files/whole_file.h"
#include "platform/posix/retry.h"

namespace karno::platform {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kUsualLineBytesMax = 1024;
constexpr int kGivenBackPart = 10;
constexpr unsigned kMemoryDevices = 1;  // the major number of /dev/null and its like

bool neverBlocks(const struct stat& status) {
  return S_ISREG(status.st_mode) || S_ISBLK(status.st_mode) ||
         (S_ISCHR(status.st_mode) && major(status.st_rdev) == kMemoryDevices);
}

// The same pipe or terminal with flags of its own.
ScopedDescriptor openedOnceMore(int descriptor) {
  const std::string path = fmt::format("/proc/self/fd/{}", descriptor);
  return ScopedDescriptor(
      retryOnInterrupt([&] { return ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
}

}  // namespace

ConsoleOutput::ConsoleOutput(int descriptor, milliseconds waitMax)
    : descriptor_(descriptor), waitMax_(waitMax) {
  lookAtDescriptor();
}

// Another file may have taken the descriptor's place. The node of a pipe that is open here is not used again.
void ConsoleOutput::lookAtDescriptor() {
  struct stat status = {};
  const bool isOpen = ::fstat(descriptor_, &status) == 0;
  const Identity identity{.device = status.st_dev, .node = status.st_ino};
  if (identity_ == identity) return;

  identity_ = identity;
  own_.reset();
  notShown_ = 0;
  isCut_ = false;
  waitLeft_ = waitMax_;
  way_ = Way::Plain;
  if (isOpen && S_ISSOCK(status.st_mode)) {
    way_ = Way::Messages;
  } else if (isOpen && !neverBlocks(status)) {
    own_ = openedOnceMore(descriptor_);
    way_ = own_.isOpen() ? Way::OwnDescription : Way::AfterAsking;
  }
  isPlain_.store(isOpen && way_ == Way::Plain, std::memory_order_relaxed);
}

// Every log line comes through here, so the usual one is put together without an allocation.
void ConsoleOutput::writeLine(std::string_view line) {
  if (line.size() < kUsualLineBytesMax) {
    std::array<char, kUsualLineBytesMax> text;
    *std::copy(line.begin(), line.end(), text.begin()) = '\n';
    write(std::string_view(text.data(), line.size() + 1));
    return;
  }
  write(std::string(line) + '\n');
}

void ConsoleOutput::write(std::string_view text) {
  if (isPlain_.load(std::memory_order_relaxed)) {
    writeAll(descriptor_, text);
    return;
  }
  const std::scoped_lock lock(mutex_);
  lookAtDescriptor();
  if (!tellWhatWasNotShown() || writeWhole(text) == Outcome::NoRoom) ++notShown_;
}

// False when there is no room for that yet.
bool ConsoleOutput::tellWhatWasNotShown() {
  if (notShown_ == 0) return true;
  const std::string line =
      fmt::format("Console: lines that nobody read and that are therefore not shown: {}\n", notShown_);
  if (writeWhole(isCut_ ? '\n' + line : line) == Outcome::NoRoom) return false;
  notShown_ = 0;
  isCut_ = false;
  return true;
}

ConsoleOutput::Outcome ConsoleOutput::writeWhole(std::string_view bytes) {
  bool isBegun = false;
  while (!bytes.empty()) {
    const ssize_t count = retryOnInterrupt([&] { return offer(bytes); });
    if (count > 0) {
      isBegun = true;
      bytes.remove_prefix(static_cast<std::size_t>(count));
      continue;
    }
    if (count < 0 && errno != EAGAIN) return Outcome::Refused;
    if (waitForRoom()) continue;
    isCut_ = isCut_ || isBegun;
    return Outcome::NoRoom;
  }
  return Outcome::Written;
}

// As write(), but EAGAIN when there is no room now.
ssize_t ConsoleOutput::offer(std::string_view bytes) {
  switch (way_) {
    case Way::Plain:
      return ::write(descriptor_, bytes.data(), bytes.size());
    case Way::OwnDescription:
      return ::write(own_.get(), bytes.data(), bytes.size());
    case Way::Messages:
      return ::send(descriptor_, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    case Way::AfterAsking:
      break;
  }
  pollfd room = {.fd = descriptor_, .events = POLLOUT, .revents = 0};
  const int answer = ::poll(&room, 1, 0);
  if (answer == 0) errno = EAGAIN;
  return answer > 0 ? ::write(descriptor_, bytes.data(), std::min<std::size_t>(bytes.size(), PIPE_BUF)) : -1;
}

bool ConsoleOutput::waitForRoom() {
  if (notShown_ > 0) return false;
  const Clock::time_point begin = Clock::now();
  waitLeft_ = std::min<Clock::duration>(waitMax_, waitLeft_ + (begin - waitCountedTo_) / kGivenBackPart);
  waitCountedTo_ = begin;
  const auto wait = std::chrono::duration_cast<milliseconds>(waitLeft_);
  if (wait <= milliseconds(0)) return false;

  pollfd room = {.fd = descriptor_, .events = POLLOUT, .revents = 0};
  const int answer = ::poll(&room, 1, static_cast<int>(std::min<milliseconds::rep>(wait.count(), INT_MAX)));
  const bool isInterrupted = answer < 0 && errno == EINTR;
  waitCountedTo_ = Clock::now();
  // Room that is not enough for the line is no reason to ask for ever.
  waitLeft_ -= std::max<Clock::duration>(waitCountedTo_ - begin, milliseconds(1));
  return answer > 0 || isInterrupted;
}

}  // namespace karno::platform
