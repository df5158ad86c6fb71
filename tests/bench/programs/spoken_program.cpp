#include "spoken_program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <ctime>

namespace karno::bench {
namespace {

constexpr std::int64_t kLimitNanoseconds = 10'000'000'000;

}  // namespace

std::int64_t monotonicNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return 1'000'000'000LL * now.tv_sec + now.tv_nsec;
}

SpokenProgram::SpokenProgram(const std::vector<std::string>& command) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
  output_.reset(ends[0]);
  const platform::ScopedDescriptor writer(ends[1]);
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, writer.get(), STDERR_FILENO);
  if (posix_spawn(&processIdentifier_, arguments[0], &files, nullptr, arguments.data(), environ) != 0) {
    processIdentifier_ = -1;
  }
  posix_spawn_file_actions_destroy(&files);
}

SpokenProgram::~SpokenProgram() {
  if (processIdentifier_ < 0) return;
  kill(processIdentifier_, SIGKILL);
  waitpid(processIdentifier_, nullptr, 0);
}

std::optional<SpokenProgram::Line> SpokenProgram::lineWith(const std::string& words) {
  const std::int64_t giveUpAt = monotonicNanoseconds() + kLimitNanoseconds;
  while (std::optional<Line> line = nextLine(giveUpAt)) {
    if (line->text.find(words) != std::string::npos) return line;
  }
  return std::nullopt;
}

std::optional<std::int64_t> SpokenProgram::endNanoseconds() {
  const platform::ScopedDescriptor process(static_cast<int>(syscall(SYS_pidfd_open, processIdentifier_, 0)));
  pollfd item{.fd = process.get(), .events = POLLIN, .revents = 0};
  if (poll(&item, 1, static_cast<int>(kLimitNanoseconds / 1'000'000)) != 1) return std::nullopt;
  const std::int64_t end = monotonicNanoseconds();
  waitpid(processIdentifier_, nullptr, 0);
  processIdentifier_ = -1;
  return end;
}

std::optional<SpokenProgram::Line> SpokenProgram::nextLine(std::int64_t giveUpAt) {
  std::size_t end = unread_.find('\n');
  while (end == std::string::npos) {
    const std::int64_t left = (giveUpAt - monotonicNanoseconds()) / 1'000'000;
    pollfd item{.fd = output_.get(), .events = POLLIN, .revents = 0};
    if (left <= 0 || poll(&item, 1, static_cast<int>(left)) <= 0) return std::nullopt;
    std::array<char, 4096> bytes;
    const ssize_t count = read(output_.get(), bytes.data(), bytes.size());
    readNanoseconds_ = monotonicNanoseconds();
    if (count <= 0) return std::nullopt;
    unread_.append(bytes.data(), static_cast<std::size_t>(count));
    end = unread_.find('\n');
  }
  Line line{.text = unread_.substr(0, end), .readNanoseconds = readNanoseconds_};
  unread_.erase(0, end + 1);
  return line;
}

}  // namespace karno::bench
