#pragma once
#include <filesystem>

namespace karno::test {

// Makes this process, and what it starts, one of the machine's. Nothing leaves a core file behind.
void enterMachine(const std::filesystem::path& machine);

}  // namespace karno::test
