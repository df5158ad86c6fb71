#pragma once
#include <string>
#include <string_view>

// Texts that others have written and that are to stand in a line of ours: the title of a release in a feed,
// the name of a process.
namespace karno::platform {

// The character, or its escape where it would not be seen but do something: "\n", "\r", "\t", and "\u001b"
// for the other control characters, for what ends a line or a paragraph and for what turns the direction of
// the text (Unicode's Bidi_Control). A backslash stays as it is.
void appendVisibly(std::string& text, char32_t character);

// The whole text in that way. A byte that is wrong becomes U+FFFD.
std::string inOneLine(std::string_view text);

}  // namespace karno::platform
