#pragma once
#include <string>

#include "fake_platform.h"

namespace karno::simulation {

// What belongs to the interface of the launcher's classes and the launcher itself does not use, or not again:
// "asks again", "cancels progress", "moves twice", "wants an end", "texts", "names", "files", "settings".
// What comes out wrong fails an expectation.
void useInterface(test::FakePlatform& machine, const std::string& what);

}  // namespace karno::simulation
