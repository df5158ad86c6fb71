#include "platform/posix/processes/spawn.h"

#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include "platform/posix/processes/spawn_descriptors.h"

extern "C" char** environ;

namespace karno::platform {
namespace {

// The attributes and file actions of one spawn.
class SpawnSettings {
 public:
  SpawnSettings() {
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawn_file_actions_init(&actions_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }

  // 0 or the errno of the first call that failed.
  int prepare(int standardOutput) {
    sigset_t noSignals;
    sigset_t allSignals;
    // Macros on macOS, so not ::sigemptyset.
    sigemptyset(&noSignals);
    sigfillset(&allSignals);
    sigdelset(&allSignals, SIGKILL);
    sigdelset(&allSignals, SIGSTOP);

    // The attributes begin with the group that means one of the child's own.
    short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP;
    if (const int error = ::posix_spawnattr_setsigmask(&attributes_, &noSignals)) return error;
    if (const int error = ::posix_spawnattr_setsigdefault(&attributes_, &allSignals)) return error;
    if (standardOutput != STDOUT_FILENO) {
      if (const int error = ::posix_spawn_file_actions_adddup2(&actions_, standardOutput, STDOUT_FILENO)) {
        return error;
      }
    }
    if (const int error = inheritOnlyStandardStreams(attributes_, flags, actions_)) return error;
    return ::posix_spawnattr_setflags(&attributes_, flags);
  }

  const posix_spawnattr_t* attributes() const { return &attributes_; }
  const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawnattr_t attributes_;
  posix_spawn_file_actions_t actions_;
};

bool holdsNul(const std::string& text) { return text.find('\0') != std::string::npos; }

}  // namespace

Result<std::int32_t> spawn(const TaskLaunch& task, int standardOutput) {
  std::vector<std::string> words = {task.executablePath};
  words.insert(words.end(), task.arguments.begin(), task.arguments.end());
  if (std::any_of(words.begin(), words.end(), holdsNul)) return Error::posix(EINVAL);

  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  SpawnSettings settings;
  if (const int error = settings.prepare(standardOutput)) return Error::posix(error);

  pid_t child = 0;
  const int error = ::posix_spawn(&child, task.executablePath.c_str(), settings.actions(),
                                  settings.attributes(), arguments.data(), environ);
  if (error != 0) return Error::posix(error);
  return static_cast<std::int32_t>(child);
}

TaskEnd endFromWaitStatus(int status) {
  if (WIFSIGNALED(status)) {
    return {.terminationStatus = WTERMSIG(status), .terminationReason = TerminationReason::UncaughtSignal};
  }
  return {.terminationStatus = WEXITSTATUS(status), .terminationReason = TerminationReason::Exit};
}

}  // namespace karno::platform
