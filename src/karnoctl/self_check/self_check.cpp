#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

#include "karnoctl/json_text.h"

namespace karno::karnoctl {
namespace {

constexpr const char* kLauncher = "Karno";

// The launcher's program has the name that Info.plist gives it.
std::string launcherProgram(const platform::Value::Dictionary& information) {
  const std::string name = textIn(information, "CFBundleExecutable").value_or(kLauncher);
  return "Contents/MacOS/" + (name.find('/') == std::string::npos ? name : kLauncher);
}

}  // namespace

void checkBundleAndSystem(const CheckedBundle& bundle) {
  const auto information = checkInformation(bundle).value_or(platform::Value::Dictionary());
  checkProgram(bundle, launcherProgram(information), "the launcher cannot start");
  checkProgram(bundle, "Contents/MacOS/karnoctl", "nobody can look after this launcher");
  checkHelpers(bundle);
  checkMacBundle(bundle);
  checkTrust(bundle, information);
  checkTexts(bundle, information);
  checkSystem(bundle);
}

std::string closingSentence(const CheckedBundle& bundle) {
  const SelfCheckFindings& found = bundle.findings;
  return fmt::format(
      "Nothing is wrong with {}: {} programs, {} property lists, {} tables of texts and {} messages to the "
      "system were checked.",
      bundle.path, found.programs, found.propertyLists, found.tables, found.messages);
}

std::string findingsJson(const CheckedBundle& bundle) {
  const SelfCheckFindings& found = bundle.findings;
  return jsonText({{"bundle", bundle.path},
                   {"fine", found.wrong.empty()},
                   {"wrong", found.wrong},
                   {"notes", found.notes},
                   {"checked",
                    {{"programs", found.programs},
                     {"propertyLists", found.propertyLists},
                     {"tables", found.tables},
                     {"messages", found.messages}}}});
}

}  // namespace karno::karnoctl
