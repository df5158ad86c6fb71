#pragma once
#include <string_view>

#include "platform/dispatch.h"

namespace karno::platform {

// Runs the block on this thread with an autorelease pool around it. What it throws becomes a console line
// that begins with `owner`.
void runBlock(const Block& block, std::string_view owner);

}  // namespace karno::platform
