#pragma once
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "installer/archive/extraction.h"

namespace karno::installer {

// How often a wait for the reader looks whether the work is still wanted.
inline constexpr std::chrono::milliseconds kWantedInterval{100};

// At least so long lies between two lines of progress.
inline constexpr std::chrono::milliseconds kProgressInterval{50};

// Writes "progress N TOTAL" lines to a descriptor while an archive is unpacked. Stops the work when nobody
// reads them any more, when the process was told to end, or when the process that started this one has gone.
class ProgressLines final : public ExtractionObserver {
 public:
  // The descriptor stays the caller's.
  ProgressLines(int output, std::uint64_t totalBytes);

  bool goesOn(std::uint64_t bytesRead) override;

  // Whether the work should still go on, without a line.
  bool isWanted() const;

  // A line of its own, however long the reader takes to make room for it. False when it could not be written
  // or is not wanted any more.
  bool say(std::string_view line) const;

 private:
  bool hasRoom() const;

  const int output_;
  const std::uint64_t totalBytes_;
  const int parent_;
  std::uint64_t bytesRead_ = 0;
  std::optional<std::chrono::steady_clock::time_point> lastLine_;
};

}  // namespace karno::installer
