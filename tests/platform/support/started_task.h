#pragma once
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/tasks.h"

namespace karno::test {

// Launches a task and remembers every end that its handler is told.
class StartedTask {
 public:
  StartedTask(platform::Tasks& tasks, std::string path, std::vector<std::string> arguments)
      : ends_(std::make_shared<Ends>()),
        result_(tasks.launch({.executablePath = std::move(path), .arguments = std::move(arguments)},
                             [ends = ends_](const platform::TaskEnd& end) { ends->add(end); })) {}

  const platform::Result<std::int32_t>& result() const { return result_; }

  std::optional<platform::TaskEnd> waitForEnd(std::chrono::seconds limit = std::chrono::seconds(20)) {
    return ends_->waitForFirst(limit);
  }

  // How often the handler was called once it had a while for a second call.
  std::size_t numberOfEnds(std::chrono::milliseconds while_ = std::chrono::milliseconds(50)) {
    waitForEnd();
    return ends_->countAfter(while_);
  }

 private:
  class Ends {
   public:
    void add(const platform::TaskEnd& end) {
      const std::scoped_lock lock(mutex_);
      ends_.push_back(end);
      changed_.notify_all();
    }
    std::optional<platform::TaskEnd> waitForFirst(std::chrono::seconds limit) {
      std::unique_lock lock(mutex_);
      if (!changed_.wait_for(lock, limit, [this] { return !ends_.empty(); })) return std::nullopt;
      return ends_.front();
    }
    std::size_t countAfter(std::chrono::milliseconds time) {
      std::unique_lock lock(mutex_);
      changed_.wait_for(lock, time, [this] { return ends_.size() > 1; });
      return ends_.size();
    }

   private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<platform::TaskEnd> ends_;
  };

  std::shared_ptr<Ends> ends_;
  platform::Result<std::int32_t> result_;
};

}  // namespace karno::test
