#include "launcher_run.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <system_error>
#include <thread>

#include "client_processes.h"

namespace karno::test {
namespace {

constexpr std::chrono::milliseconds kLookInterval{10};
constexpr std::chrono::milliseconds kZombieMax{3000};
constexpr std::chrono::seconds kChildMax{40};

// The launcher dies with the process that tests it.
pid_t spawn(const std::string& launcher, const std::string& console) {
  posix_spawn_file_actions_t files;
  ::posix_spawn_file_actions_init(&files);
  ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, console.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
  std::vector<std::string> words{"setpriv", "--pdeathsig", "KILL", "--", launcher};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t process = -1;
  const int error = ::posix_spawnp(&process, "setpriv", &files, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&files);
  if (error != 0) throw std::system_error(error, std::generic_category(), launcher);
  return process;
}

}  // namespace

LauncherRun::LauncherRun(Places places)
    : places_(std::move(places)), launcher_(spawn(places_.launcher.string(), places_.console.string())) {}

LauncherRun::~LauncherRun() {
  if (hasEnded()) return;
  ::kill(launcher_, SIGKILL);
  ::waitpid(launcher_, nullptr, 0);
}

// The children that run now. Zombies are counted only when they stay: each is one until it is waited for.
std::vector<pid_t> LauncherRun::look() {
  int status = 0;
  if (!hasEnded() && ::waitpid(launcher_, &status, WNOHANG) == launcher_) status_ = status;

  std::vector<pid_t> running;
  const Clock::time_point now = Clock::now();
  decltype(zombies_) seen;
  for (const ClientProcess& process : clientProcesses(places_.client, launcher_)) {
    if (process.parent != launcher_) continue;
    if (!process.isZombie) {
      running.push_back(process.identifier);
      continue;
    }
    const auto before = std::find_if(zombies_.begin(), zombies_.end(),
                                     [&](const auto& each) { return each.first == process.identifier; });
    seen.emplace_back(process.identifier, before == zombies_.end() ? now : before->second);
    if (now - seen.back().second > kZombieMax) oldZombies_.insert(process.identifier);
  }
  zombies_ = std::move(seen);
  childrenMax_ = std::max(childrenMax_, running.size());
  return running;
}

std::optional<pid_t> LauncherRun::waitForNewChild(pid_t previous) {
  const Clock::time_point giveUpAt = Clock::now() + kChildMax;
  while (Clock::now() < giveUpAt) {
    const std::vector<pid_t> running = look();
    const auto child =
        std::find_if(running.begin(), running.end(), [previous](pid_t each) { return each != previous; });
    if (hasEnded()) return std::nullopt;
    if (child != running.end()) return *child;
    std::this_thread::sleep_for(kLookInterval);
  }
  return std::nullopt;
}

bool LauncherRun::waitForLines(std::size_t count, const std::string& text) {
  const Clock::time_point giveUpAt = Clock::now() + kChildMax;
  while (Clock::now() < giveUpAt && !hasEnded()) {
    const std::vector<std::string> all = lines();
    const auto found = std::count_if(all.begin(), all.end(), [&](const std::string& line) {
      return line.find(text) != std::string::npos;
    });
    if (static_cast<std::size_t>(found) >= count) return true;
    watchFor(kLookInterval);
  }
  return false;
}

void LauncherRun::terminate() const {
  if (!hasEnded()) ::kill(launcher_, SIGTERM);
}

void LauncherRun::watchFor(std::chrono::milliseconds time) {
  const Clock::time_point end = Clock::now() + time;
  while (Clock::now() < end && !hasEnded()) {
    look();
    std::this_thread::sleep_for(std::min<Clock::duration>(kLookInterval, end - Clock::now()));
  }
}

bool LauncherRun::waitForEnd(std::chrono::seconds limit) {
  watchFor(limit);
  return hasEnded();
}

bool LauncherRun::clientsLeave(std::chrono::seconds limit) {
  const Clock::time_point giveUpAt = Clock::now() + limit;
  while (!clientProcesses(places_.client, launcher_).empty()) {
    if (Clock::now() >= giveUpAt) return false;
    std::this_thread::sleep_for(kLookInterval);
  }
  return true;
}

std::vector<std::string> LauncherRun::lines() const {
  std::vector<std::string> lines;
  std::ifstream stream(places_.console);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace karno::test
