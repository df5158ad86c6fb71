#pragma once
#include <string>

#include "platform/cocoa/runtime/objc.h"

// An Objective-C exception reaches a C++ catch block without its object. So the runtime's part of each system
// notes what is raised before it is.
namespace karno::platform::objc {

// Keeps name and reason of an NSException that is about to be raised on this thread.
void noteRaised(Id exception) noexcept;

// "NAME: REASON" of what was noted last on this thread, and forgets it; empty when nothing was.
std::string takeRaised();

}  // namespace karno::platform::objc
