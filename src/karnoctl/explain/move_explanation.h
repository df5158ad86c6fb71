#pragma once
#include "move/move_plan.h"

namespace karno::karnoctl {

// Why the launcher asks to be moved, or does not.
enum class MoveRule {
  Elsewhere,             // it asks: it is in no Applications folder
  InApplicationsFolder,  // it does not, nor below
  Suppressed,            // by the user default
  InNoBundle,            // not known: this program lies in no bundle, so no launcher beside it does
};

// What is told of a place outside the Applications folders.
enum class LauncherPlace { Downloads, DiskImage, Translocated, InsideApplication, Other };

struct MoveExplanation {
  MoveRule rule = MoveRule::InApplicationsFolder;
  Move move;  // only its first field unless it asks

  // Of a launcher that asks.
  LauncherPlace place = LauncherPlace::Other;
  bool isDestinationTaken = false;

  bool asks() const { return rule == MoveRule::Elsewhere; }
};

// Asks the launcher's own code, on the platform that is installed. Where it would ask to be moved, hdiutil
// may be run.
MoveExplanation explainMove();

}  // namespace karno::karnoctl
