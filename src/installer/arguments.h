#pragma once
#include <functional>

#include "command_line/verb.h"
#include "installer/install.h"
#include "installer/unpack.h"

// What can be asked of the program, and how; the doing is the caller's.
namespace karno::installer {

command_line::Verb unpackVerb(std::function<int(const UnpackRequest&)> unpack);
command_line::Verb installVerb(std::function<int(const InstallRequest&, bool relaunch)> install);

}  // namespace karno::installer
