#pragma once
#include <map>
#include <string>
#include <vector>

#include "platform/processes.h"

namespace karno::test {

// The launcher is process 4242, a child of launchd.
class FakeProcesses final : public platform::Processes {
 public:
  std::int32_t currentProcessIdentifier() const override { return current; }
  std::int32_t parentProcessIdentifier() const override { return parent; }
  std::vector<std::string> arguments() const override { return commandLine; }
  std::string name(std::int32_t processIdentifier) const override {
    const auto found = names.find(processIdentifier);
    return found == names.end() ? "" : found->second;
  }

  std::int32_t current = 4242;
  std::int32_t parent = 1;
  std::vector<std::string> commandLine = {"/Applications/Karno.app/Contents/MacOS/Karno"};
  std::map<std::int32_t, std::string> names = {{1, "launchd"}, {4242, "Karno"}};
};

}  // namespace karno::test
