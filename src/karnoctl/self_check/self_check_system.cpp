#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

namespace karno::karnoctl {
namespace {

constexpr const char* kFramework = "Contents/Frameworks/Sparkle.framework";

void report(const CheckedBundle& bundle, const platform::MessageCensus& census, std::string_view owner) {
  bundle.findings.messages += census.lookedFor;
  for (const std::string& message : census.missing) {
    bundle.wrong(fmt::format("{} has no {}: what the launcher does with it fails.", owner, message));
  }
  for (const std::string& message : census.doneWithout) {
    bundle.note(fmt::format("{} has no {}, which the launcher does without.", owner, message));
  }
}

void checkFramework(const CheckedBundle& bundle) {
  constexpr const char* kCost = "updates never start, and the launcher does not quit when its client ends";
  if (!bundle.hasFolder(kFramework, kCost)) return;
  const auto census = bundle.runtime.updaterMessages(bundle.pathOf(kFramework));
  if (!census) {
    bundle.wrong(fmt::format("{} cannot be loaded ({}): {}.", kFramework, reasonOf(census.error()), kCost));
    return;
  }
  report(bundle, census.value(), kFramework);
}

}  // namespace

void checkMacBundle(const CheckedBundle& bundle) {
  if (!bundle.isForMacOS()) return;
  checkFramework(bundle);
  bundle.hasFile(kSeal, "the bundle as a whole is not signed, and macOS may refuse it");
}

void checkSystem(const CheckedBundle& bundle) {
  report(bundle, bundle.runtime.systemMessages(), "This system");
}

void checkExceptions(const CheckedBundle& bundle) {
  if (bundle.runtime.exceptionsBecomeErrors()) return;
  bundle.wrong("An exception of this system has not become an error: one can end the launcher at any time.");
}

}  // namespace karno::karnoctl
