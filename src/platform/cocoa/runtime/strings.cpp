#include "platform/cocoa/runtime/strings.h"

#include "platform/text/utf8.h"

namespace karno::platform::objc {

// The platform's own UTF-8 conversions refuse a text for one bad byte and end at the first NUL.
Object string(std::string_view text) {
  const std::u16string units = utf16OfUTF8(text);
  const Id allocated = send(classNamed("NSString"), "alloc");
  const char16_t* characters = units.data();
  return Object::adopting(send(allocated, "initWithCharacters:length:", characters, UInteger{units.size()}));
}

std::string text(Id string) {
  std::u16string units(send<UInteger>(string, "length"), u'\0');
  if (units.empty()) {
    return {};
  }
  char16_t* const characters = units.data();
  send<void>(string, "getCharacters:range:", characters, Range{0, units.size()});
  return utf8OfUTF16(units);
}

}  // namespace karno::platform::objc
