#pragma once
#include <string>
#include <string_view>

namespace karno::platform::updates {

// Release notes as plain text: the words of HTML without its tags, one line for each of its blocks and list
// items, entities resolved; scripts and style sheets are left out. Any bytes give some text.
std::string plainTextOfHTML(std::string_view html);

}  // namespace karno::platform::updates
