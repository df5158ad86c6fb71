#pragma once
#include <atomic>
#include <cstdint>
#include <filesystem>

#include "platform/platform.h"

namespace karno::bench {

// A temporary home folder and machine root for the whole run, and the C locale; set in the environment.
class Workplace {
 public:
  Workplace();
  void remove();

  static const std::filesystem::path& home();

  // The machine root.
  static std::filesystem::path machine() { return home().parent_path().parent_path(); }

  // Puts a Mac's commands and a macFUSE that is recent enough into the machine root, once; its commands come
  // first on the search path from then on. Throws std::runtime_error.
  static void layOutMachine();

 private:
  std::filesystem::path folder_;
};

// The launcher's bundle beside which the benchmarks were built.
std::filesystem::path builtBundle();

// What the log's files have seen since the program started.
struct FileCounts {
  std::atomic<std::uint64_t> linesWritten{0};
  std::atomic<std::uint64_t> rotations{0};
};

FileCounts& fileCounts();

// How many shell lines the launcher's code has run since the program started.
std::uint64_t shellCommands();

// The native platform with its files and its shell wrapped, so that lines that reached the file, rotations
// and shell lines are counted, and with the launcher's bundle for its own.
platform::Platform& countingPlatform(platform::Platform& native);

}  // namespace karno::bench
