#pragma once
#include <string>

// What the move shows the user. Main thread only; each waits for the answer.
namespace karno {

// Asks whether the launcher may move itself; brings it to the front first when it is not there.
bool userWantsMove(const std::string& bundlePath, bool needsAuthorisation);

// Says that the move failed.
void showMoveFailure();

}  // namespace karno
