#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include "peers.h"

namespace karno::bench {
namespace {

class SpdlogAsync final : public PeerLog {
 public:
  explicit SpdlogAsync(const std::filesystem::path& file)
      : file_(file),
        pool_(std::make_shared<spdlog::details::thread_pool>(spdlog::details::default_async_q_size, 1)),
        logger_(std::make_shared<spdlog::async_logger>(
            "bench",
            spdlog::sinks_init_list{std::make_shared<spdlog::sinks::stderr_sink_mt>(),
                                    std::make_shared<spdlog::sinks::basic_file_sink_mt>(file.string())},
            pool_, spdlog::async_overflow_policy::block)) {
    logger_->set_pattern("%Y-%m-%d %H:%M:%S:%e%z (%P) [%l] %v");
    logger_->flush_on(spdlog::level::trace);
  }

  void logInfo(std::string_view message) override { logger_->info(message); }

  // Its writer sleeps until there is a line.
  void settle() override {}

  // The pool's end waits for its queue.
  void drain(std::uint64_t) override {
    logger_.reset();
    pool_.reset();
  }

  std::uint64_t lines() const override {
    std::ifstream text(file_);
    return static_cast<std::uint64_t>(std::count(std::istreambuf_iterator<char>(text), {}, '\n'));
  }

 private:
  const std::filesystem::path file_;
  std::shared_ptr<spdlog::details::thread_pool> pool_;
  std::shared_ptr<spdlog::async_logger> logger_;
};

}  // namespace

std::unique_ptr<PeerLog> makeSpdlogAsync(const std::filesystem::path& file) {
  return std::make_unique<SpdlogAsync>(file);
}

}  // namespace karno::bench
