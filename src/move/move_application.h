#pragma once
#include <optional>

#include "util/error.h"

namespace karno {

// The code of the errors that say that the user did not want the move; every other one is a failure.
inline constexpr int kMoveCancelledCode = 89;

// Asks the user whether the launcher may move itself into this machine's Applications folder, and does it:
// copies the bundle there, removes the one it runs from, and arranges for the new copy to be opened once this
// process has ended, which the caller must see to. Absent when nothing was to be done, when it was moved, or
// when a copy that runs already was brought to the front. Errors are of the POSIX domain: 89 for a cancel, 14
// for a failure, which the user has then been told of, 22 off the main thread. Main thread only; blocks it
// for as long as the user, the copy and the commands take. Its log lines go to the console log only.
std::optional<Error> moveApplicationToApplicationsFolder(bool onlyFromDiskImage);

// True from the decision to ask the user until the routine returns.
bool moveRoutineInProgress();

}  // namespace karno
