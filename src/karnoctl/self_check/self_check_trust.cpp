#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

#include <sstream>

#include "karnoctl/self_check/system_tools.h"
#include "move/applications_folder.h"
#include "platform/version_order.h"

namespace karno::karnoctl {
namespace {

constexpr const char* kExtendedAttributes = "/usr/bin/xattr";

void checkLowestSystem(const CheckedBundle& bundle, const platform::Value::Dictionary& information) {
  const auto lowest = textIn(information, "LSMinimumSystemVersion");
  if (!lowest) return;
  const auto [major, minor, patch] = platform::versionParts(*lowest);
  if (bundle.platform.systemVersion.isAtLeast(major, minor, patch)) return;
  bundle.wrong(
      fmt::format("{} wants macOS {} or later, and this one is older: it does not start the launcher.",
                  kInformationFile, *lowest));
}

void checkTranslocation(const CheckedBundle& bundle) {
  if (!isTranslocated(bundle.path)) return;
  bundle.wrong(
      "macOS runs the bundle from a random place that nobody can write to (AppTranslocation): the launcher "
      "asks to be moved, and no update can be installed.");
}

// The program that brought the bundle, out of "0083;5f5e1000;Safari;", its flags, the seconds and its name.
std::string bringerIn(const std::string& quarantine) {
  std::istringstream fields(quarantine);
  std::string field;
  for (int count = 0; count < 3; ++count) {
    if (!std::getline(fields, field, ';')) return {};
  }
  return field;
}

// Whether the bundle is in quarantine.
bool checkQuarantine(const CheckedBundle& bundle) {
  const auto answer =
      askTool(bundle.platform.commands, kExtendedAttributes, {"-p", "com.apple.quarantine", bundle.path});
  if (!answer) {
    bundle.note(fmt::format("There is no {} here: whether the bundle is in quarantine was not checked.",
                            kExtendedAttributes));
    return false;
  }
  if (answer->status != 0 || answer->text.empty()) return false;
  const std::string bringer = bringerIn(answer->text);
  bundle.note(fmt::format(
      "The bundle is in quarantine{}: macOS asks at its first opening, and may run it from a random place "
      "where it asks to be moved.",
      bringer.empty() ? "" : ", since it was brought by " + bringer));
  return true;
}

// As ls tells it: modes, links, owner.
std::string ownerOf(const CheckedBundle& bundle) {
  const auto answer = askTool(bundle.platform.commands, "/bin/ls", {"-ld", bundle.path});
  if (!answer || answer->status != 0) return {};
  std::istringstream columns(answer->text);
  std::string modes;
  std::string links;
  std::string owner;
  columns >> modes >> links >> owner;
  return owner;
}

void checkOwner(const CheckedBundle& bundle) {
  if (bundle.platform.fileManager.isWritable(bundle.path)) return;
  const std::string owner = ownerOf(bundle);
  bundle.note(fmt::format("The bundle {}: an update asks for an administrator's password.",
                          owner.empty() ? "is not for this user to change"
                                        : "belongs to " + owner + " and is not for this user to change"));
}

}  // namespace

void checkTrust(const CheckedBundle& bundle, const platform::Value::Dictionary& information) {
  checkLowestSystem(bundle, information);
  checkTranslocation(bundle);
  const bool isInQuarantine = checkQuarantine(bundle);
  checkSeal(bundle, isInQuarantine);
  checkOwner(bundle);
}

}  // namespace karno::karnoctl
