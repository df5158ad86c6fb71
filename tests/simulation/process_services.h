#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulated_service.h"

// Processes and what they run, what other programs there are, and the network.
namespace karno::simulation {

class SimulatedTasks final : public Of<platform::Tasks, &Fakes::tasks> {
 public:
  using Of::Of;

  Result<std::int32_t> launch(const platform::TaskLaunch& task, TerminationHandler onTermination) override {
    if (const Fault* const fault = world_.call("Tasks::launch")) return Error::posix(fault->number);
    const auto tell = [&world = world_, handler = std::move(onTermination)](const platform::TaskEnd& end) {
      world.call("Tasks::termination");
      if (handler && !world.isSabotaged("end not told")) handler(end);
    };
    const auto child = fake_.launch(task, tell);
    if (!child) return child;
    world_.clientLaunched(task.executablePath, child.value());
    if (world_.isSabotaged("two clients") && task.executablePath != kOpen)
      world_.clientLaunched(task.executablePath, fake_.launch(task, tell).value());
    const auto& words = task.arguments;
    if (task.executablePath == kOpen && words.size() == 5) world_.opensAnew(words[1], {words[3], words[4]});
    return child;
  }
};

class SimulatedProcesses final : public Of<platform::Processes, &Fakes::processes> {
 public:
  using Of::Of;

  std::int32_t currentProcessIdentifier() const override { return fake_.currentProcessIdentifier(); }
  std::int32_t parentProcessIdentifier() const override { return fake_.parentProcessIdentifier(); }
  std::vector<std::string> arguments() const override { return fake_.arguments(); }
  std::string name(std::int32_t process) const override {
    return world_.call("Processes::name") != nullptr ? "" : fake_.name(process);
  }
  int terminate(std::int32_t process) override {
    const Fault* const fault = world_.call("Processes::terminate");
    return fault != nullptr ? fault->number : fake_.terminate(process);
  }
  platform::WaitResult waitForChild(std::int32_t process) override {
    const Fault* const fault = world_.call("Processes::waitForChild");
    return fault != nullptr ? platform::WaitResult{.result = -1, .error = fault->number}
                            : fake_.waitForChild(process);
  }
};

class SimulatedPipe final : public platform::ShellPipe {
 public:
  SimulatedPipe(World& world, std::unique_ptr<platform::ShellPipe> pipe, bool isOdd)
      : world_(world), pipe_(std::move(pipe)), isOdd_(isOdd) {}
  std::optional<std::string> readPiece() override {
    world_.call("Shell::read");
    if (!isOdd_) return pipe_->readPiece();
    isOdd_ = false;
    return std::string(kGarbage);
  }
  bool close() override {
    const bool isFaulty = world_.call("Shell::close") != nullptr;
    return pipe_->close() && !isFaulty;
  }

 private:
  World& world_;
  std::unique_ptr<platform::ShellPipe> pipe_;
  bool isOdd_;
};

class SimulatedShell final : public Of<platform::Shell, &Fakes::shell> {
 public:
  using Of::Of;

  Result<std::unique_ptr<platform::ShellPipe>> open(const std::string& line) override {
    const Fault* const fault = world_.call("Shell::open");
    if (fault != nullptr && fault->how == How::Fails) return Error::posix(fault->number);
    auto pipe = fake_.open(line);
    if (!pipe) return pipe;
    return std::unique_ptr<platform::ShellPipe>(
        std::make_unique<SimulatedPipe>(world_, std::move(pipe.value()), fault != nullptr));
  }
};

class SimulatedCommands final : public Of<platform::Commands, &Fakes::commands> {
 public:
  using Of::Of;

  Result<platform::CommandEnd> run(const platform::TaskLaunch& command) override {
    const Fault* const fault = world_.call("Commands::run");
    if (fault == nullptr) {
      if (command.executablePath == kOpen && command.arguments.size() == 1)
        world_.note("open", command.arguments.front());
      return fake_.run(command);
    }
    if (fault->how == How::Fails) return Error::posix(fault->number);
    return platform::CommandEnd{.end = {.terminationStatus = 1}, .standardOutput = kGarbage};
  }
  std::optional<Error> start(const platform::TaskLaunch& command) override {
    if (const Fault* const fault = world_.call("Commands::start")) return Error::posix(fault->number);
    const auto error = fake_.start(command);
    const std::string script = command.arguments.empty() ? "" : command.arguments.back();
    if (!error && script.find("/usr/bin/open") != std::string::npos) world_.opensAnew(kInstalledBundle, {});
    return error;
  }
};

class SimulatedNetwork final : public Of<platform::URLLoading, &Fakes::network> {
 public:
  using Of::Of;

  Result<std::string> contentsOfURL(const std::string& url) override {
    const Fault* const fault = world_.call("URLLoading::contentsOfURL");
    if (fault == nullptr) return fake_.contentsOfURL(url);
    if (fault->how == How::Odd) return std::string(R"({"name": 7, "tag_name": [)");
    return Error("NSURLErrorDomain", -1009, {{"NSLocalizedDescription", "The computer is offline."}});
  }
};

class SimulatedWorkspace final : public Of<platform::Workspace, &Fakes::workspace> {
 public:
  using Of::Of;

  void selectFile(const std::string& path, const std::string& root) override { fake_.selectFile(path, root); }
  void openURL(const std::string& url) override {
    world_.call("Workspace::openURL");
    world_.note("site", url);
    fake_.openURL(url);
  }
  std::vector<platform::RunningApplication> runningApplications(const std::string& identifier) override {
    if (world_.call("Workspace::runningApplications") != nullptr) return {};
    return fake_.runningApplications(identifier);
  }
  void activateApplication(std::int32_t process) override { fake_.activateApplication(process); }
  std::vector<std::string> bundlePathsOfRunningApplications() override {
    world_.call("Workspace::bundlePathsOfRunningApplications");
    return fake_.bundlePathsOfRunningApplications();
  }
};

class SimulatedBundles final : public Of<platform::Bundles, &Fakes::bundles> {
 public:
  using Of::Of;

  const platform::Bundle& mainBundle() const override { return fake_.mainBundle(); }
  std::shared_ptr<const platform::Bundle> bundleAtPath(const std::string& path) const override {
    return world_.call("Bundles::bundleAtPath") != nullptr ? nullptr : fake_.bundleAtPath(path);
  }
};

}  // namespace karno::simulation
