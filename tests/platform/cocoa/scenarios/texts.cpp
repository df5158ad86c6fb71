#include "texts.h"

namespace karno::test {
namespace {

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

}  // namespace

PromptTexts englishPrompt() {
  return {.message = "Karno needs macFUSE to show your drive on this Mac.",
          .explanation =
              "Press Continue to open the macFUSE web site. Download and install macFUSE there; Karno "
              "goes on by itself as soon as it is installed.",
          .continueTitle = "Continue",
          .cancelTitle = "Cancel"};
}

PromptTexts germanPrompt() {
  return {.message = "Karno benötigt macFUSE, um Ihr Laufwerk auf diesem Mac anzuzeigen.",
          .explanation =
              "Klicken Sie auf „Fortfahren“, um die macFUSE-Website zu öffnen. Laden Sie macFUSE dort "
              "herunter und installieren Sie die Dateisystemerweiterung; Karno wird automatisch "
              "fortgesetzt, sobald die Installation abgeschlossen ist.",
          .continueTitle = "Fortfahren",
          .cancelTitle = "Abbrechen"};
}

std::vector<std::pair<std::string, PromptTexts>> promptsOfManyLengths() {
  return {
      {"nothing", {}},
      {"one letter", {.message = "A", .explanation = "b", .continueTitle = "C", .cancelTitle = "D"}},
      {"English", englishPrompt()},
      {"German", germanPrompt()},
      {"Japanese",
       {.message = "このMacでドライブを表示するには、macFUSEが必要です。",
        .explanation =
            "「続ける」をクリックしてmacFUSEのWebサイトを開きます。そこからmacFUSEをダウンロードして"
            "インストールしてください。インストールが完了すると、Karnoは自動的に続行します。",
        .continueTitle = "続ける",
        .cancelTitle = "キャンセル"}},
      {"one long word",
       {.message = repeated("Dateisystemerweiterung", 8),
        .explanation = repeated("Laufwerksbereitstellung", 12),
        .continueTitle = "Weiter",
        .cancelTitle = "Abbrechen"}},
      {"long titles",
       {.message = "Titles",
        .explanation = "that are longer than usual",
        .continueTitle = "Zur Website der Dateisystemerweiterung wechseln",
        .cancelTitle = "Die Installation der Dateisystemerweiterung abbrechen"}},
      {"many sentences",
       {.message = repeated("Karno needs macFUSE. ", 6),
        .explanation = repeated("Press Continue to open the macFUSE web site. ", 40),
        .continueTitle = "Continue",
        .cancelTitle = "Cancel"}},
      {"many lines",
       {.message = "First\nSecond",
        .explanation = "One\n\nTwo\nThree",
        .continueTitle = "Continue",
        .cancelTitle = "Cancel"}},
  };
}

}  // namespace karno::test
