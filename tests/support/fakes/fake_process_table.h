#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fake_bundles.h"
#include "fake_clock.h"
#include "fake_files.h"
#include "fake_scheduler.h"
#include "platform/process_list.h"
#include "platform/processes.h"
#include "platform/tasks.h"

namespace karno::test {

// The processes of a machine, shared by every service that starts, ends or lists some. The launcher is
// process 4242. What is started counts up from 5001 and runs until the test or a termination signal ends it.
class FakeProcessTable {
 public:
  static constexpr std::int32_t kLauncher = 4242;

  struct Process {
    std::int32_t parent = kLauncher;
    std::string executablePath = {};
    std::optional<platform::Date> startDate = kStartOfTest;
    platform::Tasks::TerminationHandler onTermination = {};
  };

  // What is particular about a program.
  struct Program {
    std::optional<platform::TaskEnd> endsAtOnce;
    bool ignoresTermination = false;
  };

  FakeProcessTable(FakeScheduler& scheduler, const FakeClock& clock, const FakeBundles& bundles,
                   const FakeFiles& files);

  void add(std::int32_t processIdentifier, Process process) {
    processes_.insert_or_assign(processIdentifier, std::move(process));
  }
  void add(std::int32_t processIdentifier) { add(processIdentifier, Process{}); }
  void remove(std::int32_t processIdentifier) { processes_.erase(processIdentifier); }

  // An application that somebody else has started.
  void addApplication(const std::string& bundlePath);

  // A file, the executable of a bundle, or one of the commands that every Mac has.
  bool hasProgram(const std::string& path) const;

  // The identifier of the new child; ENOENT when there is no such program, EACCES when it is a folder.
  platform::Result<std::int32_t> start(const std::string& path,
                                       platform::Tasks::TerminationHandler onTermination);

  // The handler runs on the virtual thread "task termination". False when no such process runs.
  bool end(std::int32_t processIdentifier, platform::TaskEnd how = {});

  // 0 or an errno value, as Processes::terminate().
  int terminate(std::int32_t processIdentifier);

  // Blocks in virtual time, as Processes::waitForChild().
  platform::WaitResult waitForChild(std::int32_t processIdentifier);

  std::vector<std::int32_t> children() const;
  std::vector<platform::RunningProcess> running() const;

  // Those of them that run from a bundle. The kernel tells of the end of a child before its parent hears of
  // it.
  struct Application {
    std::int32_t processIdentifier = 0;
    std::string bundlePath;
  };
  std::vector<Application> applications() const { return fromBundles(running()); }
  std::vector<Application> applicationsWithUntoldEnds() const;

  std::map<std::string, Program> programs;  // by path

 private:
  static std::vector<Application> fromBundles(const std::vector<platform::RunningProcess>& processes);

  FakeScheduler& scheduler_;
  const FakeClock& clock_;
  const FakeBundles& bundles_;
  const FakeFiles& files_;
  std::map<std::int32_t, Process> processes_;
  std::map<std::int32_t, std::string> untold_;  // executables of children whose handler has not returned
  std::set<std::int32_t> awaited_;              // children that somebody waits for
  std::int32_t next_ = 5001;
};

}  // namespace karno::test
