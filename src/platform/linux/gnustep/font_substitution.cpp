#include "platform/linux/gnustep/font_substitution.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/cocoa/runtime/strings.h"
#include "platform/linux/bundles/preferred_languages.h"
#include "platform/linux/gnustep/installed_fonts.h"
#include "platform/linux/gnustep/method_replacement.h"
#include "platform/never_destroyed.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::Object;
using objc::Range;
using objc::Sel;
using objc::send;
using objc::UInteger;

constexpr const char* kFontAttribute = "NSFont";
constexpr UInteger kBoldTrait = 2;

Id fontManager() { return send(objc::classNamed("NSFontManager"), "sharedFontManager"); }
bool isBold(Id font) { return (send<UInteger>(fontManager(), "traitsOfFont:", font) & kBoldTrait) != 0; }
Id lighter(Id font) { return send(fontManager(), "convertFont:toNotHaveTrait:", font, kBoldTrait); }

const InstalledFonts& installedFonts(bool isBold) {
  static const std::vector<std::string> languages = preferredLanguages();
  static NeverDestroyed<InstalledFonts> bold(languages.empty() ? "" : languages.front(), true);
  static NeverDestroyed<InstalledFonts> regular(languages.empty() ? "" : languages.front(), false);
  return isBold ? *bold : *regular;
}

// One character of a text, which is one or two of its UTF-16 units.
struct Character {
  char32_t code = 0;
  Range place;
};

constexpr bool isHighSurrogate(char16_t unit) { return unit >= 0xd800 && unit < 0xdc00; }
constexpr bool isLowSurrogate(char16_t unit) { return unit >= 0xdc00 && unit < 0xe000; }

// What is drawn by no glyph, or by the framework itself: control characters, joiners and marks of direction,
// half characters, variation selectors, attachments.
constexpr bool needsGlyph(char32_t c) {
  return c > 0x20 && !(c >= 0x7f && c <= 0xa0) && !(c >= 0x200b && c <= 0x200f) &&
         !(c >= 0x2028 && c <= 0x202e) && !(c >= 0xd800 && c <= 0xdfff) && !(c >= 0xfe00 && c <= 0xfe0f) &&
         c != 0xfeff && c < 0xfffc;
}

std::vector<Character> charactersOf(Id text, Range range) {
  std::u16string units(range.length, u'\0');
  send<void>(send(text, "string"), "getCharacters:range:", units.data(), range);
  std::vector<Character> characters;
  for (std::size_t at = 0; at < units.size();) {
    const bool isPair = isHighSurrogate(units[at]) && at + 1 < units.size() && isLowSurrogate(units[at + 1]);
    const char32_t code =
        isPair ? 0x10000 + ((units[at] - 0xd800U) << 10U) + (units[at + 1] - 0xdc00U) : units[at];
    characters.push_back({code, {range.location + at, isPair ? UInteger{2} : UInteger{1}}});
    at += isPair ? 2 : 1;
  }
  return characters;
}

std::vector<Character> missingIn(Id font, const std::vector<Character>& characters) {
  const Id covered = send(font, "coveredCharacterSet");
  std::vector<Character> missing;
  for (const Character& character : characters) {
    if (needsGlyph(character.code) && !send<bool>(covered, "longCharacterIsMember:", character.code))
      missing.push_back(character);
  }
  return missing;
}

struct Substitute {
  Object font;
  bool isBold = false;
};

Substitute substituteFor(const std::vector<Character>& missing, Id font) {
  std::u32string codes;
  for (const Character& character : missing) codes += character.code;
  const auto size = send<double>(font, "pointSize");
  Substitute found;
  installedFonts(isBold(font)).bestFor(codes, [&](const InstalledFonts::Font& candidate) {
    const Id made =
        send(objc::classNamed("NSFont"), "fontWithName:size:", objc::string(candidate.name), size);
    if (made == nullptr) return false;
    found = {Object::retaining(made), candidate.isBold};
    return true;
  });
  return found;
}

void setFont(Id text, Id font, Range range) {
  send<void>(text, "addAttribute:value:range:", objc::string(kFontAttribute), font, range);
}

// Where nothing bold has the letters, none of them is.
void fixRun(Id text, Object font, Range range) {
  const std::vector<Character> characters = charactersOf(text, range);
  std::vector<Character> missing = missingIn(font.get(), characters);
  while (!missing.empty()) {
    const Substitute substitute = substituteFor(missing, font.get());
    if (!substitute.font) return;
    if (isBold(font.get()) && !substitute.isBold) {
      font = Object::retaining(lighter(font.get()));
      if (isBold(font.get())) return;
      setFont(text, font.get(), range);
      missing = missingIn(font.get(), characters);
      continue;
    }
    const std::vector<Character> left = missingIn(substitute.font.get(), missing);
    if (left.size() == missing.size()) return;
    for (const Character& character : missing) setFont(text, substitute.font.get(), character.place);
    missing = left;
  }
}

void fixFonts(Id text, Sel, Range range) {
  const objc::AutoreleasePool pool;
  const UInteger end = range.location + range.length;
  for (UInteger at = range.location; at < end;) {
    Range run;
    const Object font = Object::retaining(
        send(text, "attribute:atIndex:effectiveRange:", objc::string(kFontAttribute), at, &run));
    const UInteger runEnd = std::min(run.location + run.length, end);
    if (font) fixRun(text, font, {at, runEnd - at});
    at = runEnd;
  }
}

}  // namespace

void substituteFonts() {
  static const bool isDone = [] {
    replaceMethod(objc::classNamed("NSMutableAttributedString"), "fixFontAttributeInRange:", fixFonts);
    return true;
  }();
  static_cast<void>(isDone);
}

}  // namespace karno::platform::cocoa
