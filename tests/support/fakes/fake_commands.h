#pragma once
#include <cerrno>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "fake_process_table.h"
#include "fake_scheduler.h"
#include "platform/apple_scripts.h"
#include "platform/commands.h"

namespace karno::test {

// A command line as a test writes it: the program and its arguments with a bar between them.
inline std::string commandLine(const platform::TaskLaunch& command) {
  std::string line = command.executablePath;
  for (const std::string& argument : command.arguments) line += "|" + argument;
  return line;
}

// Commands that end at once, with status 0 and no output unless a test says otherwise.
class FakeCommands final : public platform::Commands {
 public:
  explicit FakeCommands(FakeProcessTable& processes) : processes_(processes) {}

  platform::Result<platform::CommandEnd> run(const platform::TaskLaunch& command) override {
    const std::string line = commandLine(command);
    ran.push_back(line);
    if (whenRun) whenRun(line);
    const auto found = answers.find(line);
    if (found != answers.end()) return found->second;
    if (!processes_.hasProgram(command.executablePath)) return platform::Error::posix(ENOENT);
    return platform::CommandEnd{};
  }

  std::optional<platform::Error> start(const platform::TaskLaunch& command) override {
    started.push_back(commandLine(command));
    if (startFailure) return startFailure;
    const auto child = processes_.start(command.executablePath, nullptr);
    return child ? std::nullopt : std::optional(child.error());
  }

  std::map<std::string, platform::Result<platform::CommandEnd>> answers;
  std::function<void(const std::string& line)> whenRun;  // what a command does to the machine
  std::optional<platform::Error> startFailure;
  std::vector<std::string> ran;      // waited for
  std::vector<std::string> started;  // and left to itself

 private:
  FakeProcessTable& processes_;
};

// Scripts that all go well, or all fail.
class FakeAppleScripts final : public platform::AppleScripts {
 public:
  explicit FakeAppleScripts(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  std::optional<std::string> execute(const std::string& source) override {
    scheduler_.requireMainThread("AppleScripts::execute");
    executed.push_back(source);
    return error;
  }

  std::optional<std::string> error;
  std::vector<std::string> executed;

 private:
  FakeScheduler& scheduler_;
};

}  // namespace karno::test
