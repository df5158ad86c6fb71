#include "move/move_alerts.h"

#include "move/applications_folder.h"
#include "move/lets_move.h"
#include "platform/platform.h"

namespace karno {
namespace {

constexpr const char* kEscapeKey = "\033";

std::string informativeText(const std::string& bundlePath, bool needsAuthorisation) {
  std::string text = moveText("I can move myself to the Applications folder if you'd like.");
  if (needsAuthorisation) {
    text += " " + moveText("Note that this will require an administrator password.");
  } else if (isInDownloadsFolder(bundlePath)) {
    text += " " + moveText("This will keep your Downloads folder uncluttered.");
  }
  return text;
}

}  // namespace

bool userWantsMove(const std::string& bundlePath, bool needsAuthorisation) {
  const platform::Alert alert{
      .messageText = moveText("Move to Applications folder?"),
      .informativeText = informativeText(bundlePath, needsAuthorisation),
      .buttons = {{.title = moveText("Move to Applications Folder"), .keyEquivalent = ""},
                  {.title = moveText("Do Not Move"), .keyEquivalent = kEscapeKey}}};
  platform::Application& application = platform::host().application;
  if (!application.isActive()) application.activateIgnoringOtherApps();
  return platform::host().alerts.runModal(alert) == platform::kAlertFirstButtonReturn;
}

void showMoveFailure() {
  platform::host().alerts.runModal({.messageText = moveText("Could not move to Applications folder"),
                                    .informativeText = "",
                                    .buttons = {}});
}

}  // namespace karno
