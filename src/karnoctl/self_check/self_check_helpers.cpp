#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

#include "app/karno_embedded_app.h"
#include "settings/karno_settings.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

struct Build {
  std::string bundleName;
  std::string_view identifier;
  std::string cost;
};

// A Mac's disk mostly folds case, and preferences are kept in a file with the name of their domain.
void compareWithSettings(const CheckedBundle& bundle, const std::string& file,
                         const platform::Value::Dictionary& information) {
  constexpr std::string_view kDomain = KarnoSettings::suiteName();
  const auto identifier = textIn(information, "CFBundleIdentifier");
  if (!identifier || *identifier == kDomain || !u_isEqualToCaseInsensitive(*identifier, kDomain)) return;
  bundle.note(fmt::format(
      "{} has the CFBundleIdentifier {}, the settings' domain {} but for case: on a disk that folds case its "
      "own preferences and the settings are one file.",
      file, *identifier, kDomain));
}

void checkBuild(const CheckedBundle& bundle, const Build& build) {
  const std::string folder = "Contents/Helpers/" + build.bundleName;
  if (!bundle.hasFolder(folder, build.cost)) return;

  const std::string file = folder + "/Contents/Info.plist";
  const auto information = bundle.dictionary(file, build.cost);
  if (!information) return;
  checkIdentifier(bundle, file, *information, build.identifier,
                  "a restart cannot tell whether the client still runs");
  compareWithSettings(bundle, file, *information);

  const auto program = textIn(*information, "CFBundleExecutable");
  if (!program || program->find('/') != std::string::npos) {
    bundle.wrong(fmt::format("{} has no CFBundleExecutable that names a program: {}.", file, build.cost));
    return;
  }
  checkProgram(bundle, folder + "/Contents/MacOS/" + *program, build.cost);
}

}  // namespace

void checkHelpers(const CheckedBundle& bundle) {
  checkBuild(bundle, {.bundleName = std::string(KarnoEmbeddedApp::nameForFileProviderApp()),
                      .identifier = "it.vantul.Karno",
                      .cost = "the File Provider build cannot start"});
  checkBuild(bundle, {.bundleName = std::string(KarnoEmbeddedApp::nameForFuseApp()),
                      .identifier = "it.vantul.KarnoFuse",
                      .cost = "the FUSE build cannot start"});
  if (!bundle.isForMacOS()) {
    checkProgram(bundle, "Contents/Helpers/karno-installer", "no update can be installed");
  }
}

}  // namespace karno::karnoctl
