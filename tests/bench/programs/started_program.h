#pragma once
#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace karno::bench {

// Of a running process.
std::uint64_t residentBytesOf(pid_t process);

// A bundle whose embedded application is the start probe, and the minimal programs that stand beside the
// launcher.
struct Programs {
  std::filesystem::path launcher;
  std::filesystem::path minimal;
  std::filesystem::path probe;
  std::filesystem::path bareObserver;
  std::filesystem::path bareWaiter;
  std::filesystem::path growingLog;

  // Stages them in the workplace, once.
  static const Programs& staged();
};

// One running program whose child is the start probe. Its end kills it.
class StartedProgram {
 public:
  StartedProgram(const std::vector<std::string>& command, bool childWaits);
  ~StartedProgram();
  StartedProgram(const StartedProgram&) = delete;
  StartedProgram& operator=(const StartedProgram&) = delete;

  // From just before the program was started until its child ran; negative if it did not within ten seconds.
  double secondsToChild() const;

  // All threads together, since the program started.
  std::uint64_t wakeUps() const;
  double processorSeconds() const;
  std::uint64_t residentBytes() const { return residentBytesOf(processIdentifier_); }

 private:
  std::filesystem::path probeFile_;
  std::int64_t startedNanoseconds_ = 0;
  pid_t processIdentifier_ = -1;
};

}  // namespace karno::bench
