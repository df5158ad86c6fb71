#pragma once
#include <deque>
#include <string>
#include <vector>

#include "fake_process_table.h"
#include "fake_scheduler.h"
#include "platform/tasks.h"

namespace karno::test {

// Children in the machine's table of processes.
class FakeTasks final : public platform::Tasks {
 public:
  struct Launch {
    std::string executablePath;
    std::vector<std::string> arguments;
    std::string thread;  // that launched it
  };

  FakeTasks(FakeScheduler& scheduler, FakeProcessTable& processes)
      : scheduler_(scheduler), processes_(processes) {}

  platform::Result<std::int32_t> launch(const platform::TaskLaunch& task,
                                        TerminationHandler onTermination) override;

  // Ends a child: its termination handler runs on the virtual thread "task termination".
  void end(std::int32_t processIdentifier, int status = 0,
           platform::TerminationReason reason = platform::TerminationReason::Exit);

  // Makes one launch to come fail. May be called several times for several launches.
  void failNextLaunch(platform::Error error) { failures_.push_back(std::move(error)); }

  // Every attempt, the failed ones included.
  const std::vector<Launch>& launches() const { return launches_; }
  std::vector<std::int32_t> running() const { return processes_.children(); }

 private:
  FakeScheduler& scheduler_;
  FakeProcessTable& processes_;
  std::vector<Launch> launches_;
  std::deque<platform::Error> failures_;
};

}  // namespace karno::test
