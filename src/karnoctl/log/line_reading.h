#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/file_reading.h"

namespace karno::karnoctl {

// Three times what a log file grows to. Of a file beyond all measure only the end is read.
inline constexpr std::uint64_t kLogBytesMax = 32U << 20U;

// How much of a file was read.
struct ReadingOfLines {
  std::optional<platform::Error> error;  // of opening the file, or of reading on
  bool isOfEndOnly = false;              // the file is beyond all measure
  bool endsWithinLine = false;           // of which nothing was given
};

// Gives every whole line to `take`, without its newline or that of another system. What follows the last
// newline is a line that is still being written, or was cut off. Of a line beyond all measure only the end is
// given, which is none of a log.
ReadingOfLines readLogLines(const platform::FileReading& reading, const std::string& path,
                            const std::function<void(std::string_view)>& take);

}  // namespace karno::karnoctl
