#pragma once
#include <functional>
#include <string>

namespace karno::platform {

// Lets everything else on the machine go first, for the rest of this thread's life: without a privilege the
// kernel does not take a lower priority back.
void lowerPriorityOfThisThread();

// Starts a thread that nobody joins. A thread inherits the priority of the one that starts it, so threads of
// lowered priority have it started by a helper thread that never was. Throws std::system_error when the
// system gives no more threads.
void startThread(std::function<void()> body);

// The kernel keeps the first 15 bytes.
void nameThisThread(const std::string& name);

}  // namespace karno::platform
