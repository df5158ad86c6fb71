#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

#include <sstream>

#include "karnoctl/self_check/system_tools.h"

namespace karno::karnoctl {
namespace {

constexpr const char* kCodeSign = "/usr/bin/codesign";
constexpr const char* kGatekeeper = "/usr/sbin/spctl";
constexpr int kRejected = 3;

// What follows `beginning` in the first line that begins with it; empty when none does.
std::string lineAfter(const std::string& text, std::string_view beginning) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(beginning)) return line.substr(beginning.size());
  }
  return {};
}

// The first line, without the path that it is about.
std::string complaintIn(const std::string& text, const std::string& path) {
  const std::string complaint = lineAfter(text, path + ": ");
  return complaint.empty() ? text.substr(0, text.find('\n')) : complaint;
}

// Whether it fits.
bool checkFit(const CheckedBundle& bundle) {
  const auto answer =
      askTool(bundle.platform.commands, kCodeSign, {"--verify", "--deep", "--strict", bundle.path});
  if (!answer) {
    bundle.note(fmt::format("There is no {} here: the signature of the bundle was not checked.", kCodeSign));
    return false;
  }
  if (answer->status == 0) return true;
  bundle.wrong(fmt::format("The signature of the bundle does not fit ({}): macOS may refuse to start it.",
                           complaintIn(answer->text, bundle.path)));
  return false;
}

void tellWhoseItIs(const CheckedBundle& bundle) {
  const auto answer = askTool(bundle.platform.commands, kCodeSign, {"--display", "--verbose=2", bundle.path});
  if (!answer || answer->status != 0) return;
  const std::string authority = lineAfter(answer->text, "Authority=");
  if (lineAfter(answer->text, "Signature=") == "adhoc") {
    bundle.note(
        "The bundle is signed ad hoc, by nobody: other Macs refuse it, and each new version has to be "
        "allowed anew what this one was.");
  } else if (authority.starts_with("Developer ID Application: ")) {
    bundle.note(fmt::format("The bundle is signed by {}.", authority));
  } else if (!authority.empty()) {
    bundle.note(fmt::format("The bundle is signed by {}, which is no Developer ID: other Macs refuse it.",
                            authority));
  }
}

void checkGatekeeper(const CheckedBundle& bundle, bool isInQuarantine) {
  const auto answer = askTool(bundle.platform.commands, kGatekeeper,
                              {"--assess", "--type", "execute", "--verbose=2", bundle.path});
  if (!answer || (answer->status != 0 && answer->status != kRejected)) {
    bundle.note(fmt::format(
        "{}: what Gatekeeper says of the bundle was not checked.",
        answer ? fmt::format("{} failed ({})", kGatekeeper, complaintIn(answer->text, bundle.path))
               : fmt::format("There is no {} here", kGatekeeper)));
    return;
  }
  if (answer->status == 0) return;
  const std::string source = lineAfter(answer->text, "source=");
  const std::string beginning =
      fmt::format("Gatekeeper rejects the bundle{}", source.empty() ? "" : " (" + source + ")");
  if (isInQuarantine) {
    bundle.wrong(beginning + ", which is in quarantine: macOS does not open it.");
  } else {
    bundle.note(beginning + ": a Mac that downloads it does not open it.");
  }
}

}  // namespace

void checkSeal(const CheckedBundle& bundle, bool isInQuarantine) {
  if (!bundle.platform.fileReading.open(bundle.pathOf(kSeal)) || !checkFit(bundle)) return;
  tellWhoseItIs(bundle);
  checkGatekeeper(bundle, isInQuarantine);
}

}  // namespace karno::karnoctl
