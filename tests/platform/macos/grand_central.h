#pragma once
#include <dispatch/dispatch.h>

#include <memory>
#include <string>
#include <vector>

namespace karno::platform::trial {

// Stands in for Grand Central Dispatch: writes down what it is told, keeps what was put into its queues until
// the test runs it, and gives the answers that were set. One at a time.
class GrandCentral {
 public:
  GrandCentral();
  ~GrandCentral();
  GrandCentral(const GrandCentral&) = delete;
  GrandCentral& operator=(const GrandCentral&) = delete;

  static GrandCentral& current() { return *current_; }

  std::vector<std::string> lines;
  std::intptr_t waitAnswer = 0;

  // Runs what was put into a queue first of all that waits, on a new thread.
  void runNextOnAnotherThread();

  // What the C functions do.
  dispatch_queue_t makeQueue(std::string name);
  dispatch_group_t makeGroup();
  void enqueue(dispatch_queue_t queue, void* context, dispatch_function_t work);

 private:
  struct Waiting {
    void* context;
    dispatch_function_t work;
  };
  struct NamedQueue {
    std::string name;
    dispatch_queue_s queue;
  };

  static inline GrandCentral* current_ = nullptr;
  std::vector<std::unique_ptr<NamedQueue>> queues_;
  std::vector<std::unique_ptr<dispatch_group_s>> groups_;
  std::vector<Waiting> waiting_;
};

}  // namespace karno::platform::trial
