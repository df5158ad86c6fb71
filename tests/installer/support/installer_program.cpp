#include "support/installer_program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "installer/process_end.h"
#include "temporary_folder.h"

namespace karno::test {
namespace {

using platform::ScopedDescriptor;

constexpr std::chrono::seconds kEndLimit{30};
constexpr std::chrono::milliseconds kBetweenLines{60};  // a little more than between two lines of progress

struct Pipe {
  ScopedDescriptor reader;
  ScopedDescriptor writer;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return {ScopedDescriptor(ends[0]), ScopedDescriptor(ends[1])};
}

std::vector<char*> pointersTo(const std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

// -1 leaves a stream as it is.
pid_t start(const std::vector<std::string>& command, int output, int errors) {
  const std::vector<char*> words = pointersTo(command);
  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("no process");
  if (process > 0) return process;
  if (output >= 0) ::dup2(output, STDOUT_FILENO);
  if (errors >= 0) ::dup2(errors, STDERR_FILENO);
  ::execvp(words[0], words.data());
  ::_exit(127);
}

int statusOf(pid_t process) {
  int status = 0;
  ::waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

ScopedDescriptor newFile(const std::string& path) {
  return ScopedDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
}

}  // namespace

ProgramEnd runProgram(const std::vector<std::string>& command) {
  const TemporaryFolder folder;
  const ScopedDescriptor output = newFile(folder / "output");
  const ScopedDescriptor errors = newFile(folder / "errors");
  const int status = statusOf(start(command, output.get(), errors.get()));
  return {status, contentOf(folder / "output"), contentOf(folder / "errors")};
}

std::string lastLineOf(const std::string& text) {
  if (text.empty()) return text;
  const std::size_t before = text.rfind('\n', text.size() - 2);
  return before == std::string::npos ? text : text.substr(before + 1);
}

void killDuring(const std::vector<std::string>& command, std::chrono::microseconds delay) {
  const ScopedDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  const pid_t process = start(command, nowhere.get(), nowhere.get());
  std::this_thread::sleep_for(delay);
  ::kill(process, SIGKILL);
  statusOf(process);
}

std::chrono::microseconds durationOf(const std::vector<std::string>& command) {
  const auto before = std::chrono::steady_clock::now();
  runProgram(command);
  return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - before);
}

HeldProgram::HeldProgram(const std::vector<std::string>& command, bool withParent) {
  Pipe lines = makePipe();
  const int room = ::fcntl(lines.writer.get(), F_SETPIPE_SZ, 4096);
  const std::string filling(static_cast<std::size_t>(room), '\n');
  if (room < 0 || ::write(lines.writer.get(), filling.data(), filling.size()) != room)
    throw std::runtime_error("the pipe cannot be filled");
  reader_ = std::move(lines.reader);
  if (!withParent) {
    process_ = start(command, lines.writer.get(), -1);
    return;
  }
  const Pipe identifier = makePipe();
  parent_ = ::fork();
  if (parent_ == 0) {
    const pid_t process = start(command, lines.writer.get(), -1);
    if (::write(identifier.writer.get(), &process, sizeof process) != sizeof process) ::_exit(1);
    while (true) ::pause();
  }
  if (::read(identifier.reader.get(), &process_, sizeof process_) != sizeof process_)
    throw std::runtime_error("the program did not start");
}

HeldProgram::~HeldProgram() {
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
  if (parent_ > 0) killParent();
}

void HeldProgram::takeALine() const {
  std::array<char, 4096> line;
  if (::read(reader_.get(), line.data(), line.size()) < 0) throw std::runtime_error("no line");
}

void HeldProgram::letRunUntilThereIs(const std::string& path) {
  while (!std::filesystem::exists(path)) {
    takeALine();
    std::this_thread::sleep_for(kBetweenLines);
  }
}

void HeldProgram::waitUntilItLeadsItsSession() const {
  while (::getsid(process_) != process_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void HeldProgram::signal(int number) const { ::kill(process_, number); }

void HeldProgram::killParent() const {
  ::kill(parent_, SIGKILL);
  ::waitpid(parent_, nullptr, 0);
}

void HeldProgram::stopReading() { reader_.reset(); }

bool HeldProgram::waitForEnd() const { return installer::waitForEnd(process_, kEndLimit) == 0; }

int HeldProgram::status() const { return statusOf(process_); }

}  // namespace karno::test
