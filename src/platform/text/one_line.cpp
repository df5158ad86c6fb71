#include "platform/text/one_line.h"

#include "platform/text/utf8.h"

namespace karno::platform {
namespace {

bool isBetween(char32_t first, char32_t character, char32_t last) {
  return first <= character && character <= last;
}

bool isControl(char32_t character) { return character < 0x20 || isBetween(0x7F, character, 0x9F); }

bool endsLine(char32_t character) { return isBetween(0x2028, character, 0x2029); }

bool turnsDirection(char32_t character) {
  return character == 0x061C || isBetween(0x200E, character, 0x200F) ||
         isBetween(0x202A, character, 0x202E) || isBetween(0x2066, character, 0x2069);
}

// All that are escaped have four digits at most.
void appendEscape(std::string& text, char32_t character) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  text += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[(character >> shift) & 0xF];
}

}  // namespace

void appendVisibly(std::string& text, char32_t character) {
  if (character == '\n') {
    text += "\\n";
  } else if (character == '\r') {
    text += "\\r";
  } else if (character == '\t') {
    text += "\\t";
  } else if (isControl(character) || endsLine(character) || turnsDirection(character)) {
    appendEscape(text, character);
  } else {
    appendUTF8(text, character);
  }
}

std::string inOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) appendVisibly(line, takeCharacter(text));
  return line;
}

}  // namespace karno::platform
