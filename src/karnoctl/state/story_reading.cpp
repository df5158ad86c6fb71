#include "karnoctl/state/story_reading.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string_view>

#include "karnoctl/log/line_reading.h"
#include "log/date_texts.h"
#include "log/log_files.h"

namespace karno::karnoctl {
namespace {

constexpr std::size_t kLastLines = 5;

// A start is logged within moments; the clock may have been set by a little since.
constexpr std::chrono::seconds kTolerance{60};

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
  readLogLines(reading, wrapperOldLogFile(), take);
  readLogLines(reading, wrapperLogFile(), take);
  return isOfAnotherProcess(logged.story, startDate) ? LoggedProcess{} : logged;
}

}  // namespace karno::karnoctl
