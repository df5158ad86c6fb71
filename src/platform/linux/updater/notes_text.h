#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace karno::platform::updates {

// Release notes as plain text: the words of HTML without its tags, one line for each of its blocks and list
// items, entities resolved; scripts and style sheets are left out. Any bytes give some text.
std::string plainTextOfHTML(std::string_view html);

// A text view takes the main thread a third of a second for each megabyte.
inline constexpr std::size_t kShownNotesBytesMax = 100'000;

// What an offer shows of plain notes: all, or so much of them, up to a whole character, and an ellipsis.
std::string shownNotes(std::string notes);

}  // namespace karno::platform::updates
