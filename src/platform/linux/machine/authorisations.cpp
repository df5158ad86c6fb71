#include "platform/linux/machine/authorisations.h"

#include <cerrno>

namespace karno::platform {
namespace {

constexpr const char* kPkexec = "/usr/bin/pkexec";

// pkexec(1): the user dismissed the dialogue; he may not, or could not be asked.
constexpr int kDismissed = 126;
constexpr int kNotAuthorised = 127;

class PkexecAuthorisation final : public Authorisation {
 public:
  explicit PkexecAuthorisation(Commands& commands) : commands_(commands) {}

  RightAnswer copyRight(const std::string& /*right*/, std::uint32_t flags) override {
    if ((flags & kAuthorisationInteractionAllowed) == 0) return RightAnswer::Refused;
    const auto asked = commands_.run({.executablePath = kPkexec, .arguments = {"/bin/true"}});
    if (!asked) return RightAnswer::Refused;
    const TaskEnd& end = asked.value().end;
    if (end.terminationReason != TerminationReason::Exit) return RightAnswer::Refused;
    if (end.terminationStatus == kDismissed) return RightAnswer::Cancelled;
    return end.terminationStatus == 0 ? RightAnswer::Granted : RightAnswer::Refused;
  }

  bool canExecuteWithPrivileges() override { return true; }

  Result<TaskEnd> executeWithPrivileges(const TaskLaunch& command) override {
    TaskLaunch launch{.executablePath = kPkexec, .arguments = {command.executablePath}};
    launch.arguments.insert(launch.arguments.end(), command.arguments.begin(), command.arguments.end());
    const auto run = commands_.run(launch);
    if (!run) return run.error();
    const TaskEnd& end = run.value().end;
    const bool wasRefused = end.terminationReason == TerminationReason::Exit &&
                            (end.terminationStatus == kDismissed || end.terminationStatus == kNotAuthorised);
    if (wasRefused) return Error::posix(EPERM);
    return end;
  }

 private:
  Commands& commands_;
};

}  // namespace

// Where there is no pkexec, asking for the right tells it.
std::unique_ptr<Authorisation> PkexecAuthorisations::create() {
  return std::make_unique<PkexecAuthorisation>(commands_);
}

}  // namespace karno::platform
