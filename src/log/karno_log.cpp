#include "log/karno_log.h"

#include <fmt/format.h>

#include <utility>

#include "log/date_texts.h"
#include "log/log_files.h"
#include "platform/platform.h"
#include "platform/text/utf8.h"
#include "settings/karno_settings.h"

namespace karno {
namespace {

constexpr double kWriterPauseSeconds = 0.1;
constexpr double kFlushLookSeconds = 1.0;
constexpr int kFlushLooksMax = 5;
constexpr std::uint64_t kLinesPerSizeCheck = 10;
constexpr std::uint64_t kRotationSizeBytes = 10'000'000;
constexpr std::size_t kUsualPrefixBytesMax = 64;  // all of a line but the message

}  // namespace

KarnoLog& KarnoLog::manager() {
  static platform::NeverDestroyed<KarnoLog> log;
  return *log;
}

KarnoLog::KarnoLog()
    : logDirectory_(wrapperLogDirectory()), filename_(wrapperLogFile()), oldFilename_(wrapperOldLogFile()) {
  setProcessIdentifier(platform::host().processes.currentProcessIdentifier());
  if (platform::host().files.createDirectory(logDirectory_)) return;
  platform::Dispatch& dispatch = platform::host().dispatch;
  queue_ = dispatch.makeSerialQueue("it.vantul.KarnoWrapper.Logger");
  flushQueue_ = dispatch.makeSerialQueue("it.vantul.KarnoWrapper.FlushLog");
  queue_->async([this] { dequeueLogEntries(); });
}

void KarnoLog::setProcessIdentifier(std::int32_t processIdentifier) {
  processIdentifier_ = processIdentifier;
  processText_ = fmt::format(" ({}) [", processIdentifier);
}

void KarnoLog::start() {
  takeNotices();
  logStartupMessages();
  cleanupOldLumberjackLogs();
}

void KarnoLog::takeNotices() {
  platform::host().notices.setTaker([this](platform::Notices::Level level, std::string_view line) {
    level == platform::Notices::Level::Warning ? logWarn(line) : logInfo(line);
  });
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
  std::string line;
  line.reserve(kUsualPrefixBytesMax + message.size());
  appendLogDate(line, platform::host().clock.now());
  line.append(processText_).append(level).append("] ");
  // Names of files and what other programs say may be any bytes; the log is text.
  if (platform::isValidUTF8(message)) {
    line.append(message);
  } else {
    line.append(platform::validUTF8(message));
  }
  platform::host().consoleLog.log(line);
  addEntry(line);
}

void KarnoLog::addEntry(std::string_view line) {
  const std::lock_guard guard(lock_);
  queuedLogs_.push(line);
  queuedCount_.store(queuedLogs_.size(), std::memory_order_relaxed);
}

std::optional<std::string> KarnoLog::nextEntry() {
  std::string line;
  return takeEntry(line) ? std::optional(std::move(line)) : std::nullopt;
}

std::vector<std::string> KarnoLog::queuedLogs() {
  const std::lock_guard guard(lock_);
  std::vector<std::string> lines;
  LineQueue rest = queuedLogs_;
  for (std::string line; rest.pop(line);) lines.push_back(line);
  return lines;
}

void KarnoLog::setQueuedLogs(const std::vector<std::string>& lines) {
  const std::lock_guard guard(lock_);
  queuedLogs_ = {};
  for (const std::string& line : lines) queuedLogs_.push(line);
  queuedCount_.store(queuedLogs_.size(), std::memory_order_relaxed);
}

// The line's memory serves again.
bool KarnoLog::takeEntry(std::string& line) {
  const std::lock_guard guard(lock_);
  if (!queuedLogs_.pop(line)) return false;
  queuedCount_.store(queuedLogs_.size(), std::memory_order_relaxed);
  return true;
}

void KarnoLog::dequeueLogEntries() {
  while (true) {
    platform::host().dispatch.sleep(kWriterPauseSeconds);
    for (std::string line; takeEntry(line);) write(line);
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
  const auto activity = platform::host().dispatch.beginActivity("Flushing the log");
  for (int look = 0; look < kFlushLooksMax && queuedCount() > 0; ++look) {
    platform::host().dispatch.sleep(kFlushLookSeconds);
  }
}

}  // namespace karno
