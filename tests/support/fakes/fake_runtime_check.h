#pragma once
#include <set>
#include <string>
#include <vector>

#include "platform/runtime_check.h"

namespace karno::test {

// A system that has all that is asked of it, unless a test says otherwise, with karnoctl in the launcher's
// bundle. Every file may be executed but those that a test names.
class FakeRuntimeCheck final : public platform::RuntimeCheck {
 public:
  std::string programPath() const override { return program; }
  bool isExecutable(const std::string& path) const override { return !notExecutable.contains(path); }
  platform::MessageCensus systemMessages() const override { return system; }

  platform::Result<platform::MessageCensus> updaterMessages(const std::string& framework) const override {
    loaded.push_back(framework);
    return updater;
  }

  bool exceptionsBecomeErrors() const override { return catchesExceptions; }

  std::string program = "/Applications/Karno.app/Contents/MacOS/karnoctl";
  std::set<std::string> notExecutable;
  platform::MessageCensus system{.lookedFor = 200, .missing = {}, .doneWithout = {}};
  platform::Result<platform::MessageCensus> updater =
      platform::MessageCensus{.lookedFor = 11, .missing = {}, .doneWithout = {}};
  bool catchesExceptions = true;
  mutable std::vector<std::string> loaded;  // the frameworks, in the order of the attempts
};

}  // namespace karno::test
