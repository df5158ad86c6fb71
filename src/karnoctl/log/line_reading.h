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

// Gives every whole line to `take`, without its newline. What follows the last newline is a line that is
// still being written. Of a line beyond all measure only the end is given, which is none of a log. The error
// is that of opening the file.
std::optional<platform::Error> readLogLines(const platform::FileReading& reading, const std::string& path,
                                            const std::function<void(std::string_view)>& take);

}  // namespace karno::karnoctl
