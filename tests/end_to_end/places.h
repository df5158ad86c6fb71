#pragma once
#include <filesystem>
#include <string>

#include "machine.h"

namespace karno::test {

// The machine commands and the bundle of the build that this test program belongs to.
MachineTools builtTools();

// The program that posts notifications of any kind.
std::filesystem::path postNotification();

// The program that ends children in random ways, and the one that its children run.
std::filesystem::path childStorm();
std::filesystem::path stormClient();

// The program that asks for many restarts at once, and the one that is restarted.
std::filesystem::path restartBurst();
std::filesystem::path briefClient();

// A web server for one test, and what makes releases and feeds for it.
std::filesystem::path webServerProgram();
std::filesystem::path makeReleaseProgram();
std::filesystem::path karnoAppcast();

// What tells how releases are made.
std::filesystem::path releasingDocument();

// The program that moves one bundle, and the library that makes a disk fail under a program.
std::filesystem::path moveOnce();
std::filesystem::path faultyDisk();

// The library that lets a program wait for its children as on a Mac.
std::filesystem::path waitsOfAMac();

// A client in one file, ready to run: "cpp", "python" or "shell".
std::filesystem::path oneFileClient(const std::string& language);

// The command that gives another one a display and a session bus of its own.
std::filesystem::path withDisplay();

}  // namespace karno::test
