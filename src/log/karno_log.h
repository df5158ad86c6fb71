#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "log/line_queue.h"
#include "platform/dispatch.h"
#include "platform/files.h"
#include "platform/never_destroyed.h"

namespace karno {

// The launcher's one log. A call formats its line at once, hands it to the console log and appends it to a
// queue in memory; one writer on its own serial queue drains the queue into "karno-wrapper.log" in the user's
// log folder and keeps one older generation of the file. Any thread may log; the disk is never touched on it.
class KarnoLog {
 public:
  // The shared log, made on the first call: creates the log folder and, if that succeeds, starts the writer.
  static KarnoLog& manager();

  // Writes the banner and removes old log files; has what the platform itself tells from now on. Logging
  // works before it.
  void start();

  // Dropped unless the user setting "verboseLogging" is true at this moment.
  void logVerbose(std::string_view message);
  void logDebug(std::string_view message);

  void logInfo(std::string_view message);
  void logWarn(std::string_view message);
  void logError(std::string_view message);
  void logNet(std::string_view message);

  // The common path, without any filtering. A message that holds newlines makes several lines; in the file,
  // one that holds a zero byte ends there.
  void logMessage(std::string_view message, std::string_view level);

  // Waits until the queue is empty, at most five seconds, then calls the completion (which may be empty) on
  // the flush queue. Returns at once. When the log folder could not be created there is no writer to wait
  // for: the completion then runs on a global queue without a wait.
  void flushWithCompletion(std::function<void()> completion);

  // The two steps of start() that write.
  void logStartupMessages();
  void cleanupOldLumberjackLogs();

  // The queue of finished lines. Any thread.
  void addEntry(std::string_view line);
  std::optional<std::string> nextEntry();
  std::vector<std::string> queuedLogs();
  void setQueuedLogs(const std::vector<std::string>& lines);

  // The writer, for its own thread. checkLogs() counts a line and rotates the files when it is time; false
  // when that failed.
  [[noreturn]] void dequeueLogEntries();
  bool checkLogs();
  std::uint64_t count() const { return count_; }
  void setCount(std::uint64_t count) { count_ = count; }
  std::shared_ptr<platform::AppendStream> filePointer();  // opened when there is none; null when that fails
  void setFilePointer(std::shared_ptr<platform::AppendStream> stream) { filePointer_ = std::move(stream); }

  // To be set only while no other thread uses the log. The queues are null when there is no writer.
  std::int32_t processIdentifier() const { return processIdentifier_; }
  void setProcessIdentifier(std::int32_t processIdentifier);
  const std::string& logDirectory() const { return logDirectory_; }
  void setLogDirectory(std::string path) { logDirectory_ = std::move(path); }
  const std::string& filename() const { return filename_; }
  void setFilename(std::string path) { filename_ = std::move(path); }
  const std::string& oldFilename() const { return oldFilename_; }
  void setOldFilename(std::string path) { oldFilename_ = std::move(path); }
  const std::shared_ptr<platform::Queue>& queue() const { return queue_; }
  void setQueue(std::shared_ptr<platform::Queue> queue) { queue_ = std::move(queue); }
  const std::shared_ptr<platform::Queue>& flushQueue() const { return flushQueue_; }
  void setFlushQueue(std::shared_ptr<platform::Queue> queue) { flushQueue_ = std::move(queue); }

 private:
  friend class platform::NeverDestroyed<KarnoLog>;

  KarnoLog();
  void logIfVerbose(std::string_view message, std::string_view level);
  void takeNotices();
  bool takeEntry(std::string& line);
  void write(std::string_view line);
  std::size_t queuedCount() const { return queuedCount_.load(std::memory_order_relaxed); }
  void waitUntilDrained() const;

  std::int32_t processIdentifier_ = 0;
  std::string processText_;  // what stands between the date and the level
  std::string logDirectory_;
  std::string filename_;
  std::string oldFilename_;

  std::shared_ptr<platform::Queue> queue_;
  std::shared_ptr<platform::Queue> flushQueue_;

  std::mutex lock_;  // guards queuedLogs_
  LineQueue queuedLogs_;
  std::atomic<std::size_t> queuedCount_{0};  // for the flush, which is content with an approximate answer

  std::uint64_t count_ = 0;                              // size checks asked for, writer only
  std::shared_ptr<platform::AppendStream> filePointer_;  // writer only
};

}  // namespace karno
