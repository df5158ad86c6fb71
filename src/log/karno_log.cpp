#include "log/karno_log.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <utility>

#include "log/date_texts.h"
#include "log/log_files.h"
#include "platform/platform.h"
#include "settings/karno_settings.h"

namespace karno {
namespace {

constexpr double kWriterPauseSeconds = 0.1;
constexpr double kFlushLookSeconds = 1.0;
constexpr int kFlushLooksMax = 5;
constexpr std::uint64_t kLinesPerSizeCheck = 10;
constexpr std::uint64_t kRotationSizeBytes = 10'000'000;

}  // namespace

KarnoLog& KarnoLog::manager() {
  static platform::NeverDestroyed<KarnoLog> log;
  return *log;
}

KarnoLog::KarnoLog()
    : processIdentifier_(platform::host().processes.currentProcessIdentifier()),
      logDirectory_(wrapperLogDirectory()),
      filename_(wrapperLogFile()),
      oldFilename_(wrapperOldLogFile()) {
  if (platform::host().files.createDirectory(logDirectory_)) return;
  platform::Dispatch& dispatch = platform::host().dispatch;
  queue_ = dispatch.makeSerialQueue("it.vantul.KarnoWrapper.Logger");
  flushQueue_ = dispatch.makeSerialQueue("it.vantul.KarnoWrapper.FlushLog");
  queue_->async([this] { dequeueLogEntries(); });
}

void KarnoLog::start() {
  logStartupMessages();
  cleanupOldLumberjackLogs();
}

void KarnoLog::logVerbose(std::string_view message) { logIfVerbose(message, "VERBOSE"); }
void KarnoLog::logDebug(std::string_view message) { logIfVerbose(message, "DEBUG"); }
void KarnoLog::logInfo(std::string_view message) { logMessage(message, "INFO"); }
void KarnoLog::logWarn(std::string_view message) { logMessage(message, "WARN"); }
void KarnoLog::logError(std::string_view message) { logMessage(message, "*** ERROR ***"); }
void KarnoLog::logNet(std::string_view message) { logMessage(message, "NET"); }

void KarnoLog::logIfVerbose(std::string_view message, std::string_view level) {
  if (KarnoSettings::instance().verboseLogging()) logMessage(message, level);
}

void KarnoLog::logMessage(std::string_view message, std::string_view level) {
  const std::string date = stringForLogDate(platform::host().clock.now());
  std::string line = fmt::format(FMT_COMPILE("{} ({}) [{}] {}"), date, processIdentifier_, level, message);
  platform::host().consoleLog.log(line);
  addEntry(std::move(line));
}

void KarnoLog::addEntry(std::string line) {
  const std::lock_guard guard(lock_);
  queuedLogs_.push_back(std::move(line));
  queuedCount_.store(queuedLogs_.size(), std::memory_order_relaxed);
}

std::optional<std::string> KarnoLog::nextEntry() {
  const std::lock_guard guard(lock_);
  if (queuedLogs_.empty()) return std::nullopt;
  std::string line = std::move(queuedLogs_.front());
  queuedLogs_.pop_front();
  queuedCount_.store(queuedLogs_.size(), std::memory_order_relaxed);
  return line;
}

void KarnoLog::dequeueLogEntries() {
  while (true) {
    platform::host().dispatch.sleep(kWriterPauseSeconds);
    while (const std::optional<std::string> line = nextEntry()) write(*line);
  }
}

// The stream is taken before the check: a line whose check rotates the files goes to the stream that the
// check closes, and so into neither file. That one line is the known price of a rotation.
void KarnoLog::write(std::string_view line) {
  const std::shared_ptr<platform::AppendStream> stream = filePointer();
  if (!stream) return;
  if (!checkLogs()) return;
  if (stream != filePointer_) return;
  // As a C string, which ends at a zero byte: a message may hold what another process sent.
  stream->writeLine(line.substr(0, line.find('\0')));
  stream->flush();
}

std::shared_ptr<platform::AppendStream> KarnoLog::filePointer() {
  if (!filePointer_) filePointer_ = platform::host().files.openForAppending(filename_);
  return filePointer_;
}

bool KarnoLog::checkLogs() {
  ++count_;
  if (count_ % kLinesPerSizeCheck != 0) return true;

  platform::Files& files = platform::host().files;
  if (files.sizeInBytes(filename_).value_or(0) < kRotationSizeBytes) return true;
  if (files.fileExists(oldFilename_) && files.remove(oldFilename_)) return false;
  if (files.move(filename_, oldFilename_)) return false;
  filePointer_.reset();
  return true;
}

void KarnoLog::flushWithCompletion(std::function<void()> completion) {
  logDebug("LOG[FLUSH] Flushing log");
  if (!flushQueue_) {
    platform::host().dispatch.globalQueue(platform::QueuePriority::Default).async([completion] {
      if (completion) completion();
    });
    return;
  }
  flushQueue_->async([this, completion = std::move(completion)] {
    waitUntilDrained();
    if (completion) completion();
  });
}

void KarnoLog::waitUntilDrained() const {
  for (int look = 0; look < kFlushLooksMax && queuedCount() > 0; ++look) {
    platform::host().dispatch.sleep(kFlushLookSeconds);
  }
}

}  // namespace karno
