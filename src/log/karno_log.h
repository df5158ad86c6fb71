#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

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

  // Writes the banner and removes old log files. Logging works before it.
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

  const std::string& logDirectory() const { return logDirectory_; }
  const std::string& filename() const { return filename_; }
  const std::string& oldFilename() const { return oldFilename_; }

 private:
  friend class platform::NeverDestroyed<KarnoLog>;

  KarnoLog();
  void logStartupMessages();
  void cleanupOldLumberjackLogs();
  void logIfVerbose(std::string_view message, std::string_view level);

  void addEntry(std::string_view line);
  bool nextEntry(std::string& line);
  std::size_t queuedCount() const { return queuedCount_.load(std::memory_order_relaxed); }
  void waitUntilDrained() const;

  // The writer's, on the Logger queue only.
  [[noreturn]] void dequeueLogEntries();
  void write(std::string_view line);
  std::shared_ptr<platform::AppendStream> filePointer();
  bool checkLogs();

  const std::string processText_;
  const std::string logDirectory_;
  const std::string filename_;
  const std::string oldFilename_;

  std::shared_ptr<platform::Queue> queue_;
  std::shared_ptr<platform::Queue> flushQueue_;

  std::mutex lock_;  // guards queuedLogs_
  LineQueue queuedLogs_;
  std::atomic<std::size_t> queuedCount_{0};  // for the flush, which is content with an approximate answer

  std::uint64_t count_ = 0;                              // size checks asked for, writer only
  std::shared_ptr<platform::AppendStream> filePointer_;  // writer only
};

}  // namespace karno
