#pragma once
#include <string>
#include <vector>

#include "platform/tasks.h"

// How shell lines written for a Mac find their programs in the machine root. Any thread.
namespace karno::platform {

// The root's /bin/sh. Without one it is bash, to be found on the search path: Debian's /bin/sh refuses
// --noprofile, which a Mac's accepts.
std::string shellOfMachine();

// The line with the fixed path that it begins with, if any, replaced by where that program lies under the
// root. A program that is not there keeps its path.
std::string lineForMachine(const std::string& line);

// This process's environment with the root's usr/bin first on the search path, as NAME=VALUE.
std::vector<std::string> environmentForMachine();

// The command with the path of its program replaced in the same way. In a script for "/bin/sh" with "-c" the
// fixed paths of the commands that the launcher's scripts use lead into the root as well, wherever they stand
// in it; the script itself stays as it is.
TaskLaunch launchForMachine(const TaskLaunch& command);

}  // namespace karno::platform
