#include "move/move_application.h"

#include <fmt/format.h>

#include <atomic>

#include "move/applications_folder.h"
#include "move/bundle_files.h"
#include "move/move_alerts.h"
#include "move/move_plan.h"
#include "move/privileged_copy.h"
#include "move/running_copy.h"
#include "move/shell_scripts.h"
#include "platform/platform.h"
#include "util/utilities.h"

namespace karno {
namespace {

// The numbers are those of a Mac; ECANCELED is another one elsewhere.
constexpr int kFailureCode = 14;
constexpr int kWrongThreadCode = 22;

// Any thread may ask, so it is atomic; nothing else hangs on its order.
std::atomic<bool> inProgress{false};

// Holds the flag up.
class InProgress {
 public:
  InProgress() { inProgress = true; }
  InProgress(const InProgress&) = delete;
  InProgress& operator=(const InProgress&) = delete;
  ~InProgress() { inProgress = false; }
};

void log(const std::string& line) { platform::host().consoleLog.log(line); }

Error cancelled(const std::string& message) {
  return Utilities::errorWithPOSIXCode(kMoveCancelledCode, message);
}

std::optional<Error> fail(const std::string& message) {
  showMoveFailure();
  return Utilities::errorWithPOSIXCode(kFailureCode, message);
}

void removeSource(const Move& move) {
  if (move.leavesSourceBehind()) return;
  if (!deleteOrTrash(move.bundlePath)) {
    log("WARNING -- Could not delete application after moving it to Applications folder");
  }
}

std::optional<Error> failWithPrivileges() {
  log("ERROR -- Could not copy myself to /Applications with authorization");
  return fail("Could not copy to /Applications with authorization");
}

// Also a link that leads nowhere, over which nothing can be copied either.
bool isAnythingAt(const std::string& path) {
  const platform::Files& files = platform::host().files;
  return files.fileExists(path) || files.destinationOfSymbolicLink(path);
}

// What is removed or trashed to make place must never be the launcher itself, nor go for one that has been
// thrown away or ejected while the question was up.
bool wouldLoseInstalledCopy(const Move& move) {
  return !isAnythingAt(move.bundlePath) ||
         platform::host().fileManager.isSameItem(move.bundlePath, move.destination);
}

std::optional<Error> moveWithPrivileges(const Move& move) {
  if (wouldLoseInstalledCopy(move)) return failWithPrivileges();
  switch (copyBundleWithPrivileges(move.bundlePath, move.destination)) {
    case PrivilegedCopy::Cancelled:
      log("INFO -- Not moving because user canceled authorization");
      return cancelled("User cancelled - they did not authorise");
    case PrivilegedCopy::Failed:
      return failWithPrivileges();
    case PrivilegedCopy::Done:
      break;
  }
  removeSource(move);
  return std::nullopt;
}

std::optional<Error> moveByOneself(const Move& move) {
  const bool stays = wouldLoseInstalledCopy(move);
  if (!stays && isAnythingAt(move.destination) && !trashItem(move.destination)) {
    return fail("Failed to trash pre-existing app");
  }
  if (stays || !copyBundle(move.bundlePath, move.destination)) {
    log(fmt::format("ERROR -- Could not copy myself to {}", move.destination));
    return fail("Failed to copy bundle");
  }
  removeSource(move);
  return std::nullopt;
}

bool isRunningCopyThere(const Move& move) {
  return !move.needsAuthorisation && platform::host().files.fileExists(move.destination) &&
         isApplicationAtPathRunning(move.destination);
}

void switchToRunningCopy(const Move& move) {
  log("INFO -- Switching to an already running version");
  const auto opened =
      platform::host().commands.run({.executablePath = "/usr/bin/open", .arguments = {move.destination}});
  if (!opened) log(opened.error().localizedDescription());
}

std::optional<Error> askAndMove(Move move) {
  chooseDestination(move);
  if (!userWantsMove(move.bundlePath, move.needsAuthorisation)) {
    log("INFO -- User cancelled the move");
    return cancelled("User cancelled");
  }
  log("INFO -- Moving myself to the Applications folder");
  if (isRunningCopyThere(move)) {
    switchToRunningCopy(move);
    return std::nullopt;
  }
  if (auto error = move.needsAuthorisation ? moveWithPrivileges(move) : moveByOneself(move)) return error;

  relaunchFromPath(move.destination);
  if (!move.isNested && move.diskImageDevice) detachDiskImageLater(*move.diskImageDevice);
  return std::nullopt;
}

}  // namespace

bool moveRoutineInProgress() { return inProgress; }

std::optional<Error> moveApplicationToApplicationsFolder(bool onlyFromDiskImage) {
  const platform::Platform& host = platform::host();
  if (!host.dispatch.isMainThread()) {
    return Utilities::errorWithPOSIXCode(kWrongThreadCode, "Cannot run on background thread");
  }
  Move move = moveOfLauncher();
  if (onlyFromDiskImage && !move.diskImageDevice) return std::nullopt;
  if (isInApplicationsFolder(move.bundlePath)) return std::nullopt;

  const InProgress holdsFlag;
  return askAndMove(std::move(move));
}

}  // namespace karno
