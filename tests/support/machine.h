#pragma once
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "subprocess.h"

namespace karno::test {

// What the end-to-end tests run.
struct MachineTools {
  std::filesystem::path commands;  // the folder with make-machine, start and in
  std::filesystem::path bundle;    // the launcher's bundle
};

// A machine in a temporary folder, laid out by make-machine with `options`, with the real launcher in it. The
// folder and everything that still runs go with this object. Every wait has a limit.
class Machine {
 public:
  explicit Machine(MachineTools tools, std::vector<std::string> options = {});
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  std::filesystem::path root() const { return root_; }
  std::filesystem::path home() const { return root_ / "Users/user"; }
  std::filesystem::path bundle() const { return root_ / "Applications/Karno.app"; }
  std::filesystem::path helper(const std::string& name = "Karno.app") const {
    return bundle() / "Contents/Helpers" / name;
  }

  // Runs make-machine on it again.
  CommandResult make(const std::vector<std::string>& options) const;

  // Points the launcher at a feed, in place of the deployment's.
  void useFeed(const std::string& url) const;

  // Starts the launcher; `options` are those of the start command.
  void start(const std::vector<std::string>& options = {});

  // The same with a script for the client.
  void startWithScript(const std::string& script) { start({"--env", "KARNO_CLIENT_SCRIPT=" + script}); }

  // The exit status of start; absent when it has not ended within the limit.
  std::optional<int> waitForEnd(std::chrono::seconds limit = std::chrono::seconds(40));

  void signalStart(int number) const { launcher_->signal(number); }

  // Runs a command inside.
  CommandResult in(const std::vector<std::string>& command,
                   std::chrono::seconds limit = std::chrono::seconds(60)) const;

  // The messages of the log file as "LEVEL message", with process identifiers written as N and the time that
  // a wait took as S. A physical line that is none of a log's stands as it is.
  std::vector<std::string> log() const { return messages(logFile()); }

  // The same of what start printed, where lines of other programs may stand between.
  std::vector<std::string> console() const { return messages(consoleFile()); }
  std::string consoleText() const;

  std::filesystem::path logFile() const { return home() / "Library/Logs/Karno for macOS/karno-wrapper.log"; }

  // The messages of the log file by the process that wrote them, in the order in which the processes first
  // appear in it.
  std::vector<std::vector<std::string>> logsByProcess() const;

  // Waits until the console has that message so many times; false at the limit.
  bool waitForMessages(std::ptrdiff_t count, const std::string& message,
                       std::chrono::seconds limit = std::chrono::seconds(30)) const;
  bool waitForMessage(const std::string& message,
                      std::chrono::seconds limit = std::chrono::seconds(30)) const {
    return waitForMessages(1, message, limit);
  }
  bool waitUntil(const std::function<bool()>& condition, std::chrono::seconds limit) const;

  // Process identifiers of the machine's processes whose executable lies at that place.
  std::vector<int> processesOf(const std::filesystem::path& executable) const;

  // Whether anything that was started in or for this machine has not ended.
  bool hasProcesses() const { return !processes().empty(); }

 private:
  static std::vector<std::string> messages(const std::filesystem::path& file);
  std::filesystem::path consoleFile() const { return folder_ / "console.txt"; }
  std::vector<int> processes() const;

  const MachineTools tools_;
  std::filesystem::path folder_;
  std::filesystem::path root_;
  std::unique_ptr<Subprocess> launcher_;
};

// The words that a process was started with, its program first; none when it has ended.
std::vector<std::string> commandLineOf(int processIdentifier);

}  // namespace karno::test
