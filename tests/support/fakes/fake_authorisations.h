#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fake_commands.h"
#include "fake_scheduler.h"
#include "platform/authorisations.h"

namespace karno::test {

// An administrator who authorises everything unless a test says otherwise.
class FakeAuthorisations final : public platform::Authorisations {
 public:
  explicit FakeAuthorisations(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  std::unique_ptr<platform::Authorisation> create() override {
    scheduler_.requireMainThread("Authorisations::create");
    calls.push_back("create");
    return canCreate ? std::make_unique<Reference>(*this) : nullptr;
  }

  bool canCreate = true;
  platform::RightAnswer rightAnswer = platform::RightAnswer::Granted;
  bool canExecute = true;
  std::map<std::string, platform::Result<platform::TaskEnd>>
      answers;                                           // by command line; status 0 without one
  std::function<void(const std::string&)> whenExecuted;  // what a command line does to the disk

  // Everything asked, in order: "create", "copyRight NAME FLAGS", "look up", "execute LINE", "free".
  std::vector<std::string> calls;

 private:
  class Reference final : public platform::Authorisation {
   public:
    explicit Reference(FakeAuthorisations& owner) : owner_(owner) {}
    ~Reference() override { owner_.calls.push_back("free"); }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

    platform::RightAnswer copyRight(const std::string& right, std::uint32_t flags) override {
      owner_.calls.push_back("copyRight " + right + " " + std::to_string(flags));
      return owner_.rightAnswer;
    }

    bool canExecuteWithPrivileges() override {
      owner_.calls.push_back("look up");
      return owner_.canExecute;
    }

    platform::Result<platform::TaskEnd> executeWithPrivileges(const platform::TaskLaunch& command) override {
      const std::string line = commandLine(command);
      owner_.calls.push_back("execute " + line);
      const auto found = owner_.answers.find(line);
      if (found != owner_.answers.end()) return found->second;
      if (owner_.whenExecuted) owner_.whenExecuted(line);
      return platform::TaskEnd{};
    }

   private:
    FakeAuthorisations& owner_;
  };

  FakeScheduler& scheduler_;
};

}  // namespace karno::test
