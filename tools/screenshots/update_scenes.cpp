#include "update_scenes.h"

#include <string>

#include "platform/linux/updater/notes_text.h"
#include "platform/linux/updater/offer_window.h"
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
      .text(token, {{"name", "Karno"}, {"old", "1.0"}, {"new", "1.1"}});
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

void showProgress() {
  static const std::unique_ptr<platform::ProgressWindow> window =
      platform::host().windows.makeProgressWindow();
  window->setTitle(text("OFFER_TITLE"));
  window->textField().setStringValue(text("DOWNLOADING"));
  window->progressIndicator().setDoubleValue(42);
  window->cancelButton().setTitle(text("CANCEL"));
  window->show();
}

void showAlert(std::string_view message, std::string_view explanation) {
  platform::host().alerts.runModal({.style = platform::AlertStyle::Informational,
                                    .messageText = text(message),
                                    .informativeText = text(explanation),
                                    .buttons = {{.title = text("OK"), .keyEquivalent = "\r"}}});
}

}  // namespace

std::vector<Scene> updateScenes() {
  return {{"update-offer", showOffer},
          {"update-progress", showProgress},
          {"update-none", [] { showAlert("UP_TO_DATE", "UP_TO_DATE_EXPLANATION"); }}};
}

}  // namespace karno::screenshots
