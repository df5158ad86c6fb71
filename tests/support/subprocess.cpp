#include "subprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "ending_with_parent.h"

// POSIX has no header for it.
extern char** environ;

namespace karno::test {
namespace {

constexpr std::chrono::seconds kEndLimit{15};
constexpr std::chrono::milliseconds kPollInterval{10};

struct SpawnSetup {
  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
  SpawnSetup() {
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawnattr_init(&attributes);
  }
  ~SpawnSetup() {
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&attributes);
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;
};

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

pid_t spawn(std::vector<std::string> words, const std::string& output) {
  SpawnSetup setup;
  ::posix_spawn_file_actions_addopen(&setup.files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_addopen(&setup.files, STDOUT_FILENO, output.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ::posix_spawn_file_actions_adddup2(&setup.files, STDOUT_FILENO, STDERR_FILENO);
  ::posix_spawnattr_setflags(&setup.attributes, POSIX_SPAWN_SETPGROUP);
  ::posix_spawnattr_setpgroup(&setup.attributes, 0);
  pid_t process = -1;
  const int error = ::posix_spawnp(&process, words[0].c_str(), &setup.files, &setup.attributes,
                                   pointersTo(words).data(), environ);
  if (error != 0) throw std::system_error(error, std::generic_category(), words[0]);
  return process;
}

std::optional<int> endOf(pid_t process) {
  int status = 0;
  if (::waitpid(process, &status, WNOHANG) != process) return std::nullopt;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

Subprocess::Subprocess(const std::vector<std::string>& command, const std::string& output) {
  process_ = spawn(endingWithItsParent(command), output);
}

Subprocess::~Subprocess() {
  if (status_) return;
  signal(SIGTERM);
  if (waitForEnd(kEndLimit)) return;
  ::kill(-process_, SIGKILL);
  waitForEnd(kEndLimit);
}

void Subprocess::signal(int number) const { ::kill(process_, number); }

std::optional<int> Subprocess::waitForEnd(std::chrono::seconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!status_ && !(status_ = endOf(process_)) && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kPollInterval);
  }
  return status_;
}

CommandResult runCommand(const std::vector<std::string>& command, std::chrono::seconds limit) {
  std::string output = (std::filesystem::temp_directory_path() / "karno-command-XXXXXX").string();
  const int descriptor = ::mkstemp(output.data());
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), output);
  ::close(descriptor);
  CommandResult result;
  result.status = Subprocess(command, output).waitForEnd(limit);
  std::ostringstream text;
  text << std::ifstream(output).rdbuf();
  result.output = text.str();
  std::filesystem::remove(output);
  return result;
}

}  // namespace karno::test
