#pragma once
#include <filesystem>

#include "machine.h"

namespace karno::test {

// The machine commands and the bundle of the build that this test program belongs to.
MachineTools builtTools();

// The program that posts notifications of any kind.
std::filesystem::path postNotification();

}  // namespace karno::test
