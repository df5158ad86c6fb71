#pragma once
#include <map>
#include <string>
#include <vector>

#include "fake_process_table.h"
#include "fake_scheduler.h"
#include "platform/processes.h"

namespace karno::test {

// The launcher is process 4242, a child of launchd.
class FakeProcesses final : public platform::Processes {
 public:
  FakeProcesses(FakeScheduler& scheduler, FakeProcessTable& processes)
      : scheduler_(scheduler), processes_(processes) {}

  std::int32_t currentProcessIdentifier() const override { return current; }
  std::int32_t parentProcessIdentifier() const override { return parent; }
  std::vector<std::string> arguments() const override { return commandLine; }
  std::string name(std::int32_t processIdentifier) const override {
    const auto found = names.find(processIdentifier);
    if (found != names.end()) return found->second;
    for (const auto& process : processes_.running()) {
      if (process.processIdentifier == processIdentifier)
        return process.executablePath.substr(process.executablePath.rfind('/') + 1);
    }
    return "";
  }

  int terminate(std::int32_t processIdentifier) override {
    signalled.push_back(processIdentifier);
    return signalFailure != 0 ? signalFailure : processes_.terminate(processIdentifier);
  }

  platform::WaitResult waitForChild(std::int32_t processIdentifier) override {
    waitThreads.push_back(scheduler_.currentThreadName());
    const auto found = waitResults.find(processIdentifier);
    return found != waitResults.end() ? found->second : processes_.waitForChild(processIdentifier);
  }

  std::int32_t current = FakeProcessTable::kLauncher;
  std::int32_t parent = 1;
  std::vector<std::string> commandLine = {"/Applications/Karno.app/Contents/MacOS/Karno"};
  std::map<std::int32_t, std::string> names = {{1, "launchd"}, {4242, "Karno"}};

  std::vector<std::int32_t> signalled;
  int signalFailure = 0;                                     // errno of every signal to come
  std::map<std::int32_t, platform::WaitResult> waitResults;  // in place of those of the table
  std::vector<std::string> waitThreads;

 private:
  FakeScheduler& scheduler_;
  FakeProcessTable& processes_;
};

}  // namespace karno::test
