#include "karnoctl/state/story_reading.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <string_view>

#include "karnoctl/log/log_tail.h"
#include "log/date_texts.h"
#include "log/log_files.h"

namespace karno::karnoctl {
namespace {

// Three times what a log file grows to.
constexpr std::uint64_t kLogBytesMax = 32U << 20U;
constexpr std::size_t kLineBytesMax = 64U << 10U;
constexpr std::size_t kLastLines = 5;

// A start is logged within moments; the clock may have been set by a little since.
constexpr std::chrono::seconds kTolerance{60};

using TakeLine = std::function<void(std::string_view)>;

// What follows the last newline is a line that is still being written. Of a line beyond all measure only the
// end is kept, which is none of a log.
void readLines(const platform::FileReading& reading, const std::string& path, const TakeLine& take) {
  const auto file = reading.open(path);
  if (!file) return;
  const std::uint64_t size = file.value()->sizeInBytes();
  std::string waiting;
  for (std::uint64_t offset = size - std::min(size, kLogBytesMax); offset < size;) {
    const auto piece = file.value()->read(offset, kPieceBytes);
    if (!piece || piece.value().empty()) return;
    offset += piece.value().size();
    std::string_view bytes = piece.value();
    for (std::size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
      take(waiting.append(bytes.substr(0, end)));
      waiting.clear();
      bytes.remove_prefix(end + 1);
    }
    waiting.append(bytes);
    if (waiting.size() > kLineBytesMax) waiting.clear();
  }
}

// In one zone the dates of the log sort by time.
bool isOfAnotherProcess(const LauncherStory& story, const std::optional<platform::Date>& startDate) {
  return story.beginning && startDate && *story.beginning < stringForLogDate(*startDate - kTolerance);
}

}  // namespace

LoggedProcess loggedProcess(const platform::FileReading& reading, std::int32_t processIdentifier,
                            const std::optional<platform::Date>& startDate) {
  LoggedProcess logged;
  const auto take = [&](std::string_view text) {
    const std::optional<LogLine> line = logLineIn(text);
    if (!line || line->processIdentifier != processIdentifier) return;
    logged.story.take(*line);
    if (logged.lastLines.size() == kLastLines) logged.lastLines.erase(logged.lastLines.begin());
    logged.lastLines.emplace_back(text);
  };
  readLines(reading, wrapperOldLogFile(), take);
  readLines(reading, wrapperLogFile(), take);
  return isOfAnotherProcess(logged.story, startDate) ? LoggedProcess{} : logged;
}

}  // namespace karno::karnoctl
