#include "platform/posix/processes/thread_start.h"

#include <thread>
#include <utility>

namespace karno::platform {

// A new thread takes nothing over from the quality of service of the one that starts it.
void startThreadOfNormalPriority(std::function<void()> body) { std::thread(std::move(body)).detach(); }

}  // namespace karno::platform
