#pragma once
#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "platform/notices.h"

namespace karno::test {

// Keeps what services tell, in order. Any thread.
class ToldNotices {
 public:
  platform::Notices& notices() { return notices_; }

  // "WARN lost", "INFO found".
  std::vector<std::string> lines() const {
    const std::scoped_lock lock(mutex_);
    return lines_;
  }

  std::ptrdiff_t count(const std::string& line) const {
    const std::scoped_lock lock(mutex_);
    return std::count(lines_.begin(), lines_.end(), line);
  }

 private:
  void keep(platform::Notices::Level level, std::string_view line) {
    const std::string levelText = level == platform::Notices::Level::Warning ? "WARN " : "INFO ";
    const std::scoped_lock lock(mutex_);
    lines_.push_back(levelText + std::string(line));
  }

  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
  platform::Notices notices_{
      [this](platform::Notices::Level level, std::string_view line) { keep(level, line); }};
};

}  // namespace karno::test
