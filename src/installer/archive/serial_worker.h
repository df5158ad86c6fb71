#pragma once
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "installer/archive/failure.h"

namespace karno::installer {

// Does one piece of work after the other on a thread of its own, up to the first that fails. All calls come
// from one thread, which does the work itself where the system gives no other.
class SerialWorker {
 public:
  using Work = std::function<MaybeFailure()>;

  SerialWorker();
  SerialWorker(const SerialWorker&) = delete;
  SerialWorker& operator=(const SerialWorker&) = delete;
  ~SerialWorker() { finish(); }

  // Waits while much is to be done. Gives the failure of work that was added before, if there is one.
  MaybeFailure add(Work work);

  // Waits for all work. Nothing can be added any more.
  MaybeFailure finish();

 private:
  void run();

  std::mutex mutex_;
  std::condition_variable changed_;  // one thread at most waits: for work, or for room
  std::deque<Work> waiting_;
  MaybeFailure failure_;
  bool isComplete_ = false;
  std::thread thread_;
};

}  // namespace karno::installer
