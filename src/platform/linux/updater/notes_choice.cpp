#include <algorithm>

#include "platform/linux/bundles/language_folders.h"
#include "platform/linux/updater/feed/notes_text.h"

namespace karno::platform::updates {
namespace {

constexpr const char* kEverybody = "Base.lproj";

std::string folderOf(const TranslatedNotes& notes) { return notes.language + ".lproj"; }

}  // namespace

// By the rules that choose the language of the bundle's own texts.
std::string notesFor(const FeedItem& item, const std::vector<std::string>& languages) {
  std::vector<std::string> folders = {kEverybody};
  for (const TranslatedNotes& notes : item.translatedNotes) folders.push_back(folderOf(notes));
  const std::vector<std::string> fitting = languageFolders(folders, languages);
  const auto found = std::ranges::find(item.translatedNotes, fitting.front(), folderOf);
  return found == item.translatedNotes.end() ? item.notes : found->notes;
}

}  // namespace karno::platform::updates
