// Tells launchers to restart their child many times at once, and looks at what they do:
//   karno_restart_burst MACHINE COUNT
// The machine's client is a karno_brief_client. One launcher has children that end at once, one after
// another, so that it ends as well; the other has children that stay, and is told to end when they run.
// Closes with the figures; every broken rule is a line, and the exit status 1.
#include <fmt/format.h>
#include <signal.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ipc/wrapper_notification.h"
#include "launcher_run.h"
#include "machine_environment.h"
#include "platform/platform.h"
#include "told_ends.h"

namespace {

namespace fs = std::filesystem;

using namespace karno;
using namespace karno::test;
using std::chrono::seconds;

constexpr std::string_view kReceived = "Notify[LISTEN] Received 'app-needs-restart'";
constexpr std::string_view kWaiting = "ProcessUtils: Waiting for 'it.vantul.Karno' to terminate";
constexpr std::string_view kTerminating = "AppDelegate:: Terminating";
constexpr std::chrono::milliseconds kLaunchMax{700};
constexpr seconds kEndMax{40};
constexpr seconds kLeaveMax{20};

class Burst {
 public:
  Burst(fs::path machine, std::size_t count, platform::DistributedNotifications& centre)
      : machine_(std::move(machine)), count_(count), centre_(centre) {
    ::setenv("KARNO_CLIENT_LEAVE", leave().c_str(), 1);
  }

  // One that ends without a restart ends the launcher too.
  void onChildrenThatLeave() {
    fs::remove(leave());
    LauncherRun run(places());
    postAll(run);
    std::ofstream{leave()};
    judge("children that leave", run);
  }

  // The others would wait five seconds for them, and then tell the user that the restart has failed.
  void onChildrenThatStay() {
    fs::remove(leave());
    LauncherRun run(places());
    const std::optional<pid_t> first = postAll(run);
    if (first) ::kill(*first, SIGKILL);
    run.waitForNewChild(first.value_or(0));
    waitUntilNoneIsLaunched(run);
    run.terminate();
    judge("children that stay", run);
  }

  bool isFine() const { return isFine_; }

 private:
  fs::path leave() const { return machine_ / "leave"; }

  LauncherRun::Places places() const {
    const fs::path contents = machine_ / "Applications/Karno.app/Contents";
    return {.launcher = contents / "MacOS/Karno",
            .client = contents / "Helpers/Karno.app/Contents/MacOS/Karno",
            .console = machine_ / "var/log/burst.txt"};
  }

  // Returns when each of them waits for the first child, which is the answer.
  std::optional<pid_t> postAll(LauncherRun& run) {
    const std::optional<pid_t> child = run.waitForNewChild(0);
    for (std::size_t number = 0; number < count_; ++number) {
      if (!centre_.post(wrapperNotification(kAppNeedsRestart, std::nullopt)))
        throw std::runtime_error("the bus is gone");
    }
    run.waitForLines(count_, std::string(kWaiting));
    return child;
  }

  // A launcher that is told to end has two seconds for it, which may be too short while a hundred of its
  // threads start a child each.
  static void waitUntilNoneIsLaunched(LauncherRun& run) {
    std::size_t before = 0;
    for (std::size_t now = launchesIn(run.lines()); now != before && !run.hasEnded();) {
      run.watchFor(kLaunchMax);
      before = std::exchange(now, launchesIn(run.lines()));
    }
  }

  void judge(std::string_view what, LauncherRun& run) {
    std::vector<std::string> broken;
    if (!run.waitForEnd(kEndMax)) broken.emplace_back("the launcher did not end");
    if (!run.clientsLeave(kLeaveMax)) broken.emplace_back("a client outlived its launcher");
    if (run.waitStatus() != 0)
      broken.push_back(fmt::format("the launcher's wait status is {}", run.waitStatus()));
    if (!run.oldZombies().empty()) broken.push_back(fmt::format("{} zombies", run.oldZombies().size()));
    const std::vector<std::string> log = run.lines();
    if (linesIn(log, kReceived) != count_) broken.emplace_back("not every message was heard once");
    if (linesIn(log, kTerminating) != 1) broken.emplace_back("the end was not told once");
    if (launchesIn(log) < 2) broken.emplace_back("no child was started again");

    std::cout << fmt::format("{}: {} launched, {} at a time at most, {} rules broken\n", what,
                             launchesIn(log), run.childrenMax(), broken.size());
    for (const std::string& rule : broken) std::cout << "  " << rule << '\n';
    if (broken.empty()) return;
    isFine_ = false;
    for (const std::string& line : log) std::cout << "    " << line << '\n';
  }

  static std::size_t linesIn(const std::vector<std::string>& log, std::string_view text) {
    return static_cast<std::size_t>(std::count_if(log.begin(), log.end(), [text](const std::string& line) {
      return line.find(text) != std::string::npos;
    }));
  }

  const fs::path machine_;
  const std::size_t count_;
  platform::DistributedNotifications& centre_;
  bool isFine_ = true;
};

int run(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: karno_restart_burst MACHINE COUNT\n";
    return 64;
  }
  const fs::path machine = fs::canonical(argv[1]);
  enterMachine(machine);
  Burst burst(machine, std::stoul(argv[2]), platform::nativePlatform(argc, argv).distributedNotifications);
  burst.onChildrenThatLeave();
  burst.onChildrenThatStay();
  return burst.isFine() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "karno_restart_burst: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
