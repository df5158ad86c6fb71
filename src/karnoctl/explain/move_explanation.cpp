#include "karnoctl/explain/move_explanation.h"

#include "move/applications_folder.h"
#include "platform/platform.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

MoveRule ruleFor(const std::string& bundlePath) {
  if (pathExtension(bundlePath) != "app") return MoveRule::InNoBundle;
  if (applicationNeedsMoving(false)) return MoveRule::Elsewhere;
  return isMoveSuppressed() ? MoveRule::Suppressed : MoveRule::InApplicationsFolder;
}

LauncherPlace placeOf(const Move& move) {
  if (isTranslocated(move.bundlePath)) return LauncherPlace::Translocated;
  if (move.diskImageDevice) return LauncherPlace::DiskImage;
  if (move.isNested) return LauncherPlace::InsideApplication;
  return isInDownloadsFolder(move.bundlePath) ? LauncherPlace::Downloads : LauncherPlace::Other;
}

}  // namespace

MoveExplanation explainMove() {
  MoveExplanation explanation;
  explanation.move.bundlePath = platform::host().bundles.mainBundle().bundlePath();
  explanation.rule = ruleFor(explanation.move.bundlePath);
  if (!explanation.asks()) return explanation;

  explanation.move = moveOfLauncher();
  chooseDestination(explanation.move);
  explanation.place = placeOf(explanation.move);
  explanation.isDestinationTaken = platform::host().files.fileExists(explanation.move.destination);
  return explanation;
}

}  // namespace karno::karnoctl
