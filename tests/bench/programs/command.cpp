#include "command.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

namespace karno::bench {

pid_t startCommand(std::vector<std::string> words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  const int error = posix_spawnp(&process, pointers[0], &files, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  return error == 0 ? process : -1;
}

std::optional<int> exitStatusOf(pid_t process) {
  int status = 0;
  if (process < 1 || waitpid(process, &status, 0) != process || !WIFEXITED(status)) return std::nullopt;
  return WEXITSTATUS(status);
}

double secondsOfCommand(const std::vector<std::string>& words, int expectedStatus) {
  const auto before = std::chrono::steady_clock::now();
  if (exitStatusOf(startCommand(words)) != expectedStatus) return -1;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
}

}  // namespace karno::bench
