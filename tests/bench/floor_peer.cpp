#include <fmt/compile.h>
#include <fmt/format.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "peers.h"

namespace karno::bench {
namespace {

struct CachedSecond {
  std::time_t second = -1;
  std::string text;
  std::string zone;
};

const CachedSecond& cachedSecond(std::time_t second) {
  thread_local CachedSecond cached;
  if (cached.second != second) {
    std::tm parts{};
    localtime_r(&second, &parts);
    char text[64];
    cached.text.assign(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S:", &parts));
    cached.zone.assign(text, std::strftime(text, sizeof text, "%z", &parts));
    cached.second = second;
  }
  return cached;
}

class Floor final : public PeerLog {
 public:
  explicit Floor(const std::filesystem::path& file)
      : file_(std::fopen(file.c_str(), "ae")), writer_([this] { run(); }) {}
  ~Floor() override {
    stop_ = true;
    writer_.join();
    std::fclose(file_);
  }

  void logInfo(std::string_view message) override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const CachedSecond& second = cachedSecond(now.tv_sec);
    std::string line = fmt::format(FMT_COMPILE("{}{:03}{} ({}) [INFO] {}\n"), second.text,
                                   now.tv_nsec / 1'000'000, second.zone, processIdentifier_, message);
    if (write(STDERR_FILENO, line.data(), line.size()) < 0) return;
    const std::lock_guard guard(lock_);
    lines_.push_back(std::move(line));
  }

  void settle() override {
    logInfo("settle");
    drain(lines() + 1);
  }

  void drain(std::uint64_t lines) override {
    waitUntil([&] { return written_.load() >= lines; });
  }

  std::uint64_t lines() const override { return written_.load(); }

 private:
  void run() {
    while (!stop_) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      for (std::string line = next(); !line.empty(); line = next()) {
        std::fwrite(line.data(), 1, line.size(), file_);
        std::fflush(file_);
        ++written_;
      }
    }
  }

  std::string next() {
    const std::lock_guard guard(lock_);
    if (lines_.empty()) return {};
    std::string line = std::move(lines_.front());
    lines_.pop_front();
    return line;
  }

  const int processIdentifier_ = getpid();
  std::FILE* file_;
  std::mutex lock_;
  std::deque<std::string> lines_;
  std::atomic<std::uint64_t> written_{0};
  std::atomic<bool> stop_{false};
  std::thread writer_;
};

}  // namespace

std::unique_ptr<PeerLog> makeFloor(const std::filesystem::path& file) {
  return std::make_unique<Floor>(file);
}

}  // namespace karno::bench
