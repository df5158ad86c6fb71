#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/file_reading.h"

namespace karno::karnoctl {

// Reads what is added to a log from now on, also when the file is renamed and made anew, is cut short, or is
// not there yet. One thread.
class LogFollower {
 public:
  // Begins at `offset` of `file`, or at the beginning of whatever file appears at the path when it is null.
  LogFollower(const platform::FileReading& reading, std::string path,
              std::unique_ptr<platform::ReadableFile> file, std::uint64_t offset)
      : reading_(reading), path_(std::move(path)), file_(std::move(file)), offset_(offset) {}

  // The next piece, empty when nothing has come. Never waits.
  std::string newText();

  // Whether the last piece stands at the beginning of a file that took the place of another or was cut short.
  // The line before it then never gets its end.
  bool startedAnew() const { return startedAnew_; }

 private:
  std::string readOn();

  const platform::FileReading& reading_;
  const std::string path_;
  std::unique_ptr<platform::ReadableFile> file_;
  std::uint64_t offset_;
  bool startedAnew_ = false;
};

}  // namespace karno::karnoctl
