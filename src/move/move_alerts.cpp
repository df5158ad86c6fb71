#include "move/move_alerts.h"

#include <algorithm>

#include "move/lets_move.h"
#include "platform/platform.h"

namespace karno {
namespace {

constexpr const char* kEscapeKey = "\033";

bool isInDownloads(const std::string& path) {
  const auto folders = platform::host().standardFolders.inAllDomains(platform::StandardFolder::Downloads);
  return std::ranges::any_of(folders,
                             [&path](const std::string& folder) { return path.starts_with(folder); });
}

std::string informativeText(const std::string& bundlePath, bool needsAuthorisation) {
  std::string text = moveText("I can move myself to the Applications folder if you'd like.");
  if (needsAuthorisation) {
    text += " " + moveText("Note that this will require an administrator password.");
  } else if (isInDownloads(bundlePath)) {
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
