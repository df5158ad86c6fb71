#include "installer/archive/serial_worker.h"

#include <cstddef>
#include <system_error>
#include <utility>

namespace karno::installer {
namespace {

// A piece of a file is 256 KiB at most.
constexpr std::size_t kWaitingMax = 16;

}  // namespace

SerialWorker::SerialWorker() {
  try {
    thread_ = std::thread(&SerialWorker::run, this);
  } catch (const std::system_error&) {
    // Slower, but nothing is lost.
  }
}

MaybeFailure SerialWorker::add(Work work) {
  if (!thread_.joinable()) {
    if (!failure_) failure_ = work();
    return failure_;
  }
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return waiting_.size() < kWaitingMax || failure_; });
  if (failure_) return failure_;
  waiting_.push_back(std::move(work));
  changed_.notify_one();
  return std::nullopt;
}

MaybeFailure SerialWorker::finish() {
  {
    const std::scoped_lock lock(mutex_);
    isComplete_ = true;
    changed_.notify_one();
  }
  if (thread_.joinable()) thread_.join();
  return failure_;
}

void SerialWorker::run() {
  std::unique_lock lock(mutex_);
  while (!failure_) {
    changed_.wait(lock, [this] { return !waiting_.empty() || isComplete_; });
    if (waiting_.empty()) return;
    Work work = std::move(waiting_.front());
    waiting_.pop_front();
    changed_.notify_one();
    lock.unlock();
    // What it holds goes before the lock comes back: a file that is closed may take its time.
    MaybeFailure failure = std::exchange(work, nullptr)();
    lock.lock();
    failure_ = std::move(failure);
  }
  changed_.notify_one();
}

}  // namespace karno::installer
