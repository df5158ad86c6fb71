// Ends children of launchers in random ways while restarts and quits arrive, and looks at what the launchers
// do:
//   karno_child_storm MACHINE SEED STARTS
// Runs the machine's launcher again and again until its children, each a karno_storm_client, have been
// started STARTS times. Closes with the figures; every broken rule is a line, and the exit status 1.
#include <fmt/format.h>
#include <signal.h>
#include <sys/wait.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "client_processes.h"
#include "ipc/wrapper_notification.h"
#include "launcher_run.h"
#include "machine_environment.h"
#include "platform/platform.h"
#include "told_ends.h"

namespace {

namespace fs = std::filesystem;

using namespace karno;
using namespace karno::test;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::array kSignals = {SIGKILL, SIGTERM, SIGINT, SIGHUP, SIGSEGV, SIGABRT, SIGFPE, SIGALRM};
constexpr int kRestartsMax = 9;
constexpr int kDelayMaxMilliseconds = 250;
constexpr seconds kEndMax{40};
constexpr seconds kLeaveMax{20};

struct Figures {
  std::size_t launchers = 0;
  std::size_t starts = 0;
  std::size_t ends = 0;
  std::size_t quits = 0;
  std::size_t broken = 0;
};

class Storm {
 public:
  Storm(fs::path machine, unsigned seed, platform::DistributedNotifications& centre)
      : machine_(std::move(machine)), random_(seed), centre_(centre) {}

  Figures blow(std::size_t starts) {
    while (figures_.starts < starts) runLauncher();
    return figures_;
  }

 private:
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
  bool oneIn(int chances) { return upTo(chances - 1) == 0; }
  milliseconds aMoment() { return oneIn(4) ? milliseconds(0) : milliseconds(upTo(kDelayMaxMilliseconds)); }

  void post(std::string_view message) {
    if (!centre_.post(wrapperNotification(message, std::nullopt)))
      throw std::runtime_error("the bus is gone");
    if (message != kAppNeedsRestart) {
      isQuitAsked_ = true;
      ++figures_.quits;
    }
  }

  // Ends the child and notes how the log is to tell it. A launcher that has given its reason to end may be
  // gone before it learns of this.
  void end(LauncherRun& run, pid_t child) {
    const bool mayBeUntold = isQuitAsked_ || saysItLeaves(run.lines());
    const int status = upTo(255);
    const int signal = kSignals.at(static_cast<std::size_t>(upTo(kSignals.size() - 1)));
    const bool exits = oneIn(2) && blocksUserSignal(child);
    if (exits) {
      ::sigqueue(child, SIGUSR1, {.sival_int = status});
    } else {
      ::kill(child, signal);
    }
    ends_.push_back({.text = exits ? fmt::format("status:{}, reason:1", status)
                                   : fmt::format("status:{}, reason:2", signal),
                     .mayBeUntold = mayBeUntold});
    ++figures_.ends;
  }

  // The child goes before, while or after the launcher hears that it is to be restarted, and now and then the
  // user quits meanwhile.
  void restart(LauncherRun& run, pid_t child) {
    if (oneIn(8)) {
      end(run, child);
      run.watchFor(aMoment());
      post(kAppNeedsRestart);
      return;
    }
    post(kAppNeedsRestart);
    run.watchFor(aMoment());
    if (oneIn(8)) post(oneIn(2) ? kUserSelectedQuit : kAppIsTerminating);
    end(run, child);
  }

  void quit(LauncherRun& run, pid_t child) {
    const int way = upTo(3);
    if (way == 0) return end(run, child);
    if (way == 1) end(run, child);
    post(way == 2 ? kUserSelectedQuit : kAppIsTerminating);
    run.watchFor(aMoment());
    if (way == 3) post(kUserSelectedQuit);
    if (way > 1 && oneIn(2) && !run.hasEnded()) end(run, child);
  }

  void runLauncher() {
    ends_.clear();
    isQuitAsked_ = false;
    const fs::path contents = machine_ / "Applications/Karno.app/Contents";
    LauncherRun run({.launcher = contents / "MacOS/Karno",
                     .client = contents / "Helpers/Karno.app/Contents/MacOS/Karno",
                     .console = machine_ / "var/log/storm.txt"});
    std::optional<pid_t> child = run.waitForNewChild(0);
    for (int restarts = upTo(kRestartsMax); restarts > 0 && child && !isQuitAsked_; --restarts) {
      run.watchFor(aMoment());
      restart(run, *child);
      child = run.waitForNewChild(*child);
    }
    if (child && !isQuitAsked_) {
      run.watchFor(aMoment());
      quit(run, *child);
    }
    judge(run);
  }

  void judge(LauncherRun& run) {
    std::vector<std::string> broken;
    if (!run.waitForEnd(kEndMax)) broken.emplace_back("the launcher did not end");
    if (!run.clientsLeave(kLeaveMax)) broken.emplace_back("a client outlived its launcher");
    if (run.waitStatus() != 0)
      broken.push_back(fmt::format("the launcher's wait status is {}", run.waitStatus()));
    if (run.childrenMax() != 1) broken.push_back(fmt::format("{} children at a time", run.childrenMax()));
    if (!run.oldZombies().empty()) broken.push_back(fmt::format("{} zombies", run.oldZombies().size()));
    const std::vector<std::string> log = run.lines();
    const std::vector<std::string> inLog = brokenRules(log, ends_);
    broken.insert(broken.end(), inLog.begin(), inLog.end());

    ++figures_.launchers;
    figures_.starts += launchesIn(log);
    figures_.broken += broken.size();
    if (broken.empty()) return;
    for (const std::string& rule : broken)
      std::cout << "launcher " << figures_.launchers << ": " << rule << '\n';
    for (const std::string& line : log) std::cout << "  " << line << '\n';
  }

  const fs::path machine_;
  std::mt19937 random_;
  platform::DistributedNotifications& centre_;
  std::vector<GivenEnd> ends_;  // of the launcher that runs
  bool isQuitAsked_ = false;    // of the launcher that runs
  Figures figures_;
};

int run(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: karno_child_storm MACHINE SEED STARTS\n";
    return 64;
  }
  const fs::path machine = fs::canonical(argv[1]);
  enterMachine(machine);
  std::cout << "seed " << argv[2] << '\n';
  Storm storm(machine, static_cast<unsigned>(std::stoul(argv[2])),
              platform::nativePlatform(argc, argv).distributedNotifications);
  const Figures figures = storm.blow(std::stoul(argv[3]));
  std::cout << fmt::format("{} launchers, {} starts, {} ends given, {} quits posted, {} rules broken\n",
                           figures.launchers, figures.starts, figures.ends, figures.quits, figures.broken);
  return figures.broken == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "karno_child_storm: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
