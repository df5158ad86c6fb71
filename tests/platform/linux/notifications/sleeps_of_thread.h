#pragma once
#include <filesystem>
#include <string>

#include "../../support/temporary_folder.h"

namespace karno::test {

// How often the threads of that name in this process have gone to sleep, a line for each.
inline std::string sleepsOfThread(const std::string& name) {
  std::string sleeps;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    if (contentOf(thread.path() / "comm") != name + "\n") continue;
    const std::string status = contentOf(thread.path() / "status");
    const std::size_t begin = status.find("\nvoluntary_ctxt_switches:") + 1;
    sleeps += thread.path().filename().string() + " " +
              status.substr(begin, status.find('\n', begin) - begin) + "\n";
  }
  return sleeps;
}

}  // namespace karno::test
