#include "update_scenes.h"

#include <string>

#include "platform/linux/updater/feed/notes_text.h"
#include "platform/linux/updater/offer_window.h"
#include "platform/linux/updater/update_errors.h"
#include "platform/linux/updater/update_texts.h"
#include "platform/platform.h"

namespace karno::screenshots {
namespace {

using namespace platform::updates;

constexpr const char* kNotes =
    "<h2>New in 1.1</h2><ul><li>The drive appears faster after the Mac wakes up.</li>"
    "<li>Names with emoji are shown as they are.</li></ul><h2>Mended</h2><ul>"
    "<li>A file that two people save at the same time is kept twice instead of once.</li>"
    "<li>The window for conflicts no longer opens behind others.</li>"
    "<li>Uploads go on after a change of the network.</li>"
    "<li>A drive without room says so before the first file is copied.</li>"
    "<li>Folders that many people share open at once.</li></ul><p>Thank you for all your reports.</p>";

std::string text(std::string_view token) {
  const platform::Platform& host = platform::host();
  return UpdateTexts(host.bundles.mainBundle(), host.files)
      .text(token, {{"name", "Karno"},
                    {"old", "1.0"},
                    {"new", "1.1"},
                    {"total", "45"},
                    {"left", "26"},
                    {"reason", "The process 4711 did not end."}});
}

void showOffer() {
  static CocoaOfferWindows windows;
  static const std::unique_ptr<OfferWindow> window = windows.show({.title = text("OFFER_TITLE"),
                                                                   .message = text("OFFER_MESSAGE"),
                                                                   .explanation = text("OFFER_EXPLANATION"),
                                                                   .notes = plainTextOfHTML(kNotes),
                                                                   .install = text("INSTALL"),
                                                                   .later = text("LATER"),
                                                                   .skip = text("SKIP")},
                                                                  [](long) {});
}

void showUpdateProgress() {
  static const std::unique_ptr<platform::ProgressWindow> window =
      platform::host().windows.makeProgressWindow();
  window->setTitle(text("OFFER_TITLE"));
  window->textField().setStringValue(text("DOWNLOADING_AMOUNT"));
  window->progressIndicator().setDoubleValue(42);
  window->cancelButton().setTitle(text("CANCEL"));
  window->show();
}

void tell(std::string_view message, const std::string& explanation) {
  platform::host().alerts.runModal({.style = platform::AlertStyle::Informational,
                                    .messageText = text(message),
                                    .informativeText = explanation,
                                    .buttons = {{.title = text("OK"), .keyEquivalent = "\r"}}});
}

// What an error says of itself is English in every language.
void tellFailure(std::string_view message, UpdateErrorCode code, std::string reason) {
  tell(message, updateError(code, std::move(reason)).localizedDescription());
}

void askForPermission() {
  platform::host().alerts.runModal({.messageText = text("PERMISSION"),
                                    .informativeText = text("PERMISSION_EXPLANATION"),
                                    .buttons = {{.title = text("PERMISSION_YES"), .keyEquivalent = "\r"},
                                                {.title = text("PERMISSION_NO"), .keyEquivalent = "\033"}}});
}

}  // namespace

std::vector<Scene> updateScenes() {
  return {{"update-offer", showOffer},
          {"update-progress", showUpdateProgress},
          {"update-permission", askForPermission},
          {"update-none", [] { tell("UP_TO_DATE", text("UP_TO_DATE_EXPLANATION")); }},
          {"update-system-too-old", [] { tell("UP_TO_DATE", text("SYSTEM_TOO_OLD")); }},
          {"update-system-too-new", [] { tell("UP_TO_DATE", text("SYSTEM_TOO_NEW")); }},
          {"update-check-failed",
           [] {
             tellFailure("CHECK_FAILED", UpdateErrorCode::Feed,
                         "The list of updates could not be fetched: Could not resolve host: updates.example");
           }},
          {"update-failed-after-quit", [] { tell("FAILED", text("FAILED_AFTER_QUIT")); }},
          {"update-failed", [] {
             tellFailure("FAILED", UpdateErrorCode::Signature,
                         "The signature does not belong to the archive.");
           }}};
}

}  // namespace karno::screenshots
