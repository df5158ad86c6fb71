#pragma once
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace karno::test {

struct ClientProcess {
  pid_t identifier = 0;
  pid_t parent = 0;
  bool isZombie = false;
};

// The processes whose executable is `client`, and the zombies among the children of `launcher`, whose
// executable nobody can tell any more.
std::vector<ClientProcess> clientProcesses(const std::filesystem::path& client, pid_t launcher);

// Whether a process keeps SIGUSR1 to itself until it asks for it.
bool blocksUserSignal(pid_t process);

}  // namespace karno::test
