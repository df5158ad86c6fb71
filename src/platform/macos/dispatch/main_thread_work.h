#pragma once
#include <cstdint>

#include "platform/dispatch.h"

namespace karno::platform {

// Runs the block on the main thread and waits until it has run, at most that long: at once where this is the
// main thread, else among its events, which are served while a modal alert is up as well. False when the
// time ran out first; the block still runs once the main thread is free, so it must own all that it touches.
bool runOnMainThread(Dispatch& dispatch, Block block, std::int64_t nanosecondsMax);

}  // namespace karno::platform
