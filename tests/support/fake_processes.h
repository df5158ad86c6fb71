#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fake_scheduler.h"
#include "platform/processes.h"

namespace karno::test {

// The launcher is process 4242, a child of launchd.
class FakeProcesses final : public platform::Processes {
 public:
  explicit FakeProcesses(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  std::int32_t currentProcessIdentifier() const override { return current; }
  std::int32_t parentProcessIdentifier() const override { return parent; }
  std::vector<std::string> arguments() const override { return commandLine; }
  std::string name(std::int32_t processIdentifier) const override {
    const auto found = names.find(processIdentifier);
    return found == names.end() ? "" : found->second;
  }

  int terminate(std::int32_t processIdentifier) override {
    signalled.push_back(processIdentifier);
    if (signalFailure != 0) return signalFailure;
    if (whenSignalled) whenSignalled(processIdentifier);
    return 0;
  }

  // Blocks in virtual time until a result has been laid down.
  platform::WaitResult waitForChild(std::int32_t processIdentifier) override {
    waitThreads.push_back(scheduler_.currentThreadName());
    while (!waitResults.contains(processIdentifier)) scheduler_.sleep(kLook);
    return waitResults.at(processIdentifier);
  }

  std::int32_t current = 4242;
  std::int32_t parent = 1;
  std::vector<std::string> commandLine = {"/Applications/Karno.app/Contents/MacOS/Karno"};
  std::map<std::int32_t, std::string> names = {{1, "launchd"}, {4242, "Karno"}};

  std::vector<std::int32_t> signalled;
  int signalFailure = 0;                            // errno of every signal to come
  std::function<void(std::int32_t)> whenSignalled;  // what a process does with the signal
  std::map<std::int32_t, platform::WaitResult> waitResults;
  std::vector<std::string> waitThreads;

 private:
  static constexpr double kLook = 0.001;  // seconds
  FakeScheduler& scheduler_;
};

}  // namespace karno::test
