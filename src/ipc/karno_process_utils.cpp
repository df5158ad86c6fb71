#include "ipc/karno_process_utils.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <system_error>

#include "log/karno_log.h"
#include "platform/platform.h"

namespace karno {
namespace {

constexpr double kTerminateTimeout = 10.0;         // seconds
constexpr double kTerminationPollInterval = 0.25;  // seconds; exact in binary, so the count does not drift
constexpr double kNanosecondsPerSecond = 1'000'000'000;

std::string systemText(int error) { return std::generic_category().message(error); }

// Written by the thread that waits, also when nobody reads them any more.
struct WaitCells {
  std::atomic<std::int32_t> result{0};
  std::atomic<int> error{0};
};

}  // namespace

std::string KarnoProcessUtils::stringForProcessNameForPid(std::int32_t processIdentifier) {
  const std::string name = platform::host().processes.name(processIdentifier);
  return name.empty() ? "Unknown" : name;
}

bool KarnoProcessUtils::terminateKarnoAppWithPid(std::int32_t processIdentifier, std::string_view tag) {
  KarnoLog& log = KarnoLog::manager();
  if (processIdentifier < 1) {
    log.logWarn(fmt::format("ProcessUtils[TERMINATE] Refusing to terminate Karno (pid:{}) - invalid pid",
                            processIdentifier));
    return false;
  }
  if (const int error = platform::host().processes.terminate(processIdentifier); error != 0) {
    log.logWarn(
        fmt::format("ProcessUtils[TERMINATE] Failed to terminate Karno (pid:{}). Reason: {} (errno: {})",
                    processIdentifier, systemText(error), error));
    return false;
  }
  return waitForProcessTermination(processIdentifier, kTerminateTimeout, tag);
}

bool KarnoProcessUtils::waitForProcessTermination(std::int32_t processIdentifier, double timeout,
                                                  std::string_view) {
  const auto cells = std::make_shared<WaitCells>();
  const auto activity = platform::host().dispatch.beginActivity("Waiting for a process to terminate");
  const auto group = platform::host().dispatch.makeGroup();
  group->enter();
  platform::host().dispatch.globalQueue(platform::QueuePriority::Default).async([=] {
    const platform::WaitResult wait = platform::host().processes.waitForChild(processIdentifier);
    cells->error = wait.error;
    cells->result = wait.result;
    group->leave();
  });
  group->wait(static_cast<std::int64_t>(timeout * kNanosecondsPerSecond));

  KarnoLog& log = KarnoLog::manager();
  std::int32_t result = cells->result;
  const int error = cells->error;
  // A child that somebody else has reaped is not confirmed: deliberately judged like one that still runs.
  if (result == -1 && error == ECHILD) result = 0;
  if (result == 0) {
    log.logWarn(fmt::format("ProcessUtils[TERMINATE] Timed-out waiting for process {} to terminate.",
                            processIdentifier));
  } else if (result == -1) {
    log.logWarn(fmt::format("ProcessUtils[TERMINATE] Failed to terminate process {}. Reason: {} (errno: {})",
                            processIdentifier, systemText(error), error));
  } else {
    log.logWarn(fmt::format("ProcessUtils[TERMINATE] Process {} terminated successfully", processIdentifier));
  }
  return result > 0;
}

bool KarnoProcessUtils::waitForApplicationToTerminateWithBundleID(const std::string& bundleID, double timeout,
                                                                  std::string_view) {
  KarnoLog& log = KarnoLog::manager();
  platform::Dispatch& dispatch = platform::host().dispatch;
  const auto activity = dispatch.beginActivity("Waiting for an application to terminate");
  log.logInfo(fmt::format("ProcessUtils: Waiting for '{}' to terminate", bundleID));
  double elapsed = 0;
  do {
    dispatch.sleep(kTerminationPollInterval);
    elapsed += kTerminationPollInterval;
    if (!isApplicationRunningWithBundleID(bundleID)) {
      // Without the closing quote: scripts search for the line as it has always been.
      log.logWarn(fmt::format("ProcessUtils: '{} terminated ({:.1f} seconds)", bundleID, elapsed));
      dispatch.sleep(kTerminationPollInterval);
      return true;
    }
  } while (timeout > elapsed);
  log.logWarn(fmt::format("ProcessUtils: '{}' has not terminated (timed-out after {:.1f} seconds)", bundleID,
                          timeout));
  return false;
}

bool KarnoProcessUtils::isApplicationRunningWithBundleID(const std::string& bundleID) {
  const auto running = platform::host().workspace.runningApplications(bundleID);
  return std::any_of(running.begin(), running.end(), [&](const platform::RunningApplication& application) {
    return application.bundleIdentifier == bundleID;
  });
}

}  // namespace karno
