#include "move/privileged_copy.h"

#include "platform/platform.h"
#include "util/error.h"
#include "util/string_utils.h"

namespace karno {
namespace {

using platform::Authorisation;
using platform::RightAnswer;
using platform::TaskEnd;
using platform::TerminationReason;

constexpr const char* kAdministratorRight = "system.privilege.admin";
constexpr std::uint32_t kFlags = platform::kAuthorisationInteractionAllowed |
                                 platform::kAuthorisationExtendRights | platform::kAuthorisationPreAuthorise;

bool arePathsSane(const std::string& bundlePath, const std::string& destination) {
  return pathExtension(destination) == "app" && !trimmingWhitespaceAndNewlines(destination).empty() &&
         !trimmingWhitespaceAndNewlines(bundlePath).empty();
}

bool exited(const Result<TaskEnd>& end) {
  return end && end.value().terminationReason == TerminationReason::Exit;
}

bool copyWith(Authorisation& authorisation, const std::string& bundlePath, const std::string& destination) {
  if (!authorisation.canExecuteWithPrivileges()) return false;
  // Its status is not looked at: mostly there is nothing to remove.
  const auto removal =
      authorisation.executeWithPrivileges({.executablePath = "/bin/rm", .arguments = {"-rf", destination}});
  if (!exited(removal)) return false;
  const auto copy = authorisation.executeWithPrivileges(
      {.executablePath = "/bin/cp", .arguments = {"-pR", bundlePath, destination}});
  return exited(copy) && copy.value().terminationStatus == 0;
}

}  // namespace

PrivilegedCopy copyBundleWithPrivileges(const std::string& bundlePath, const std::string& destination) {
  if (!arePathsSane(bundlePath, destination)) return PrivilegedCopy::Failed;
  const auto authorisation = platform::host().authorisations.create();
  if (!authorisation) return PrivilegedCopy::Failed;

  const RightAnswer answer = authorisation->copyRight(kAdministratorRight, kFlags);
  if (answer == RightAnswer::Cancelled) return PrivilegedCopy::Cancelled;
  if (answer != RightAnswer::Granted) return PrivilegedCopy::Failed;
  return copyWith(*authorisation, bundlePath, destination) ? PrivilegedCopy::Done : PrivilegedCopy::Failed;
}

}  // namespace karno
