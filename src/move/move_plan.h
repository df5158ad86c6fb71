#pragma once
#include <optional>
#include <string>

namespace karno {

// A launcher that is ready to be moved: where it is and where it goes.
struct Move {
  std::string bundlePath;
  std::string destination;
  bool isNested = false;  // it runs from inside another application's bundle
  std::optional<std::string> diskImageDevice;
  bool needsAuthorisation = false;

  // A bundle inside another one or on a disk image is left where it is.
  bool leavesSourceBehind() const { return isNested || diskImageDevice; }
};

// Where the launcher is. Runs hdiutil and waits for it when that is not on the root file system. Any thread.
Move moveOfLauncher();

// Where it goes: into this machine's Applications folder, under its own name. Any thread.
void chooseDestination(Move& move);

}  // namespace karno
