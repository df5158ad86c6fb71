#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/updater/feed/appcast.h"

namespace karno::platform::updates {

// Release notes as plain text: the words of HTML without its tags, one line for each of its blocks and list
// items, entities resolved; scripts and style sheets are left out. Any bytes give some text.
std::string plainTextOfHTML(std::string_view html);

// A text view takes the main thread a third of a second for each megabyte.
inline constexpr std::size_t kShownNotesBytesMax = 100'000;

// What an offer shows of plain notes: all, or so much of them, up to a whole character, and an ellipsis.
std::string shownNotes(std::string notes);

// What an offer shows of notes in that format: their text, or the beginning of it.
std::string shownNotes(std::string notes, NotesFormat format);

// Of all an item's notes those for a user who wants these languages, most wanted first. Notes without a
// language are in English.
std::string notesFor(const FeedItem& item, const std::vector<std::string>& languages);

}  // namespace karno::platform::updates
