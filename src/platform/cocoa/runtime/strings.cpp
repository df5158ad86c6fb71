#include "platform/cocoa/runtime/strings.h"

#include <vector>

#include "platform/cocoa/unicode.h"

namespace karno::platform::objc {
namespace {

using cocoa::decodeUTF8;
using cocoa::isUnicodeCharacter;

void appendUTF16(std::vector<char16_t>& units, char32_t character) {
  if (character < 0x10000) {
    units.push_back(static_cast<char16_t>(character));
    return;
  }
  const char32_t rest = character - 0x10000;
  units.push_back(static_cast<char16_t>(0xD800 + (rest >> 10)));
  units.push_back(static_cast<char16_t>(0xDC00 + (rest & 0x3FF)));
}

}  // namespace

// The platform's own UTF-8 conversions refuse a text for one bad byte and end at the first NUL.
Object string(std::string_view text) {
  std::vector<char16_t> units;
  units.reserve(text.size());
  while (!text.empty()) {
    const cocoa::DecodedCharacter next = decodeUTF8(text);
    appendUTF16(units, next.character);
    text.remove_prefix(next.length);
  }
  const Id allocated = send(classNamed("NSString"), "alloc");
  const char16_t* characters = units.data();
  return Object::adopting(send(allocated, "initWithCharacters:length:", characters, UInteger{units.size()}));
}

std::string text(Id string) {
  const auto length = send<UInteger>(string, "length");
  std::vector<char16_t> units(length);
  if (length == 0) {
    return {};
  }
  char16_t* const characters = units.data();
  send<void>(string, "getCharacters:range:", characters, Range{0, length});
  std::string answer;
  answer.reserve(length);
  for (std::size_t index = 0; index < length; ++index) {
    char32_t character = units[index];
    const bool isLead = character >= 0xD800 && character < 0xDC00;
    if (isLead && index + 1 < length && units[index + 1] >= 0xDC00 && units[index + 1] <= 0xDFFF) {
      character = 0x10000 + ((character - 0xD800) << 10) + (units[index + 1] - char32_t{0xDC00});
      ++index;
    }
    cocoa::appendUTF8(answer, isUnicodeCharacter(character) ? character : cocoa::kReplacementCharacter);
  }
  return answer;
}

}  // namespace karno::platform::objc
