#pragma once
#include <functional>
#include <string>

#include "command_line/verb.h"
#include "installer/install.h"
#include "installer/unpack.h"

// What can be asked of the program, and how; the doing is the caller's.
namespace karno::installer {

command_line::Verb unpackVerb(std::function<int(const UnpackRequest&)> unpack);

// What is done beside the swap.
struct Aftermath {
  bool relaunch = false;
  std::string touchfile;  // goes when nothing was installed; empty: none
};

command_line::Verb installVerb(std::function<int(const InstallRequest&, const Aftermath&)> install);

}  // namespace karno::installer
