#pragma once
#include <functional>

namespace karno::platform {

// Starts a thread that nobody joins, of normal priority whatever that of the caller. Throws std::system_error
// when the system gives no more threads.
void startThreadOfNormalPriority(std::function<void()> body);

}  // namespace karno::platform
