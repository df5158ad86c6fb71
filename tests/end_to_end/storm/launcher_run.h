#pragma once
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace karno::test {

// One launcher from its start to its end, and what it is seen to do with its children.
class LauncherRun {
 public:
  struct Places {
    std::filesystem::path launcher;
    std::filesystem::path client;
    std::filesystem::path console;  // where its standard error goes, made anew
  };

  explicit LauncherRun(Places places);
  ~LauncherRun();
  LauncherRun(const LauncherRun&) = delete;
  LauncherRun& operator=(const LauncherRun&) = delete;

  // Waits until a child other than `previous` runs. Absent when the launcher has ended or none came.
  std::optional<pid_t> waitForNewChild(pid_t previous);

  // Watches until the console has so many lines with that text in them. False when the launcher has ended or
  // is too slow.
  bool waitForLines(std::size_t count, const std::string& text);

  // Asks the launcher to end, as the system does.
  void terminate() const;

  // Watches for that long, or until the launcher has ended.
  void watchFor(std::chrono::milliseconds time);

  // False when the launcher has not ended within the limit.
  bool waitForEnd(std::chrono::seconds limit);

  // Whether all clients have left within that time.
  bool clientsLeave(std::chrono::seconds limit);

  bool hasEnded() const { return status_.has_value(); }
  int waitStatus() const { return status_.value_or(-1); }
  std::size_t childrenMax() const { return childrenMax_; }
  const std::set<pid_t>& oldZombies() const { return oldZombies_; }
  std::vector<std::string> lines() const;

 private:
  using Clock = std::chrono::steady_clock;

  std::vector<pid_t> look();

  const Places places_;
  pid_t launcher_ = -1;
  std::optional<int> status_;
  std::size_t childrenMax_ = 0;  // that ran at the same time
  std::vector<std::pair<pid_t, Clock::time_point>> zombies_;
  std::set<pid_t> oldZombies_;  // that stayed for longer than a moment
};

}  // namespace karno::test
