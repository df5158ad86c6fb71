#include "platform/linux/gnustep/installed_fonts.h"

#include <algorithm>

namespace karno::platform {
namespace {

struct DestroyPattern {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, DestroyPattern>;

const FcChar8* bytesOf(const std::string& text) { return reinterpret_cast<const FcChar8*>(text.c_str()); }

// As fontconfig names it, which knows regions where a tag tells the script.
std::string fontconfigLanguage(std::string_view tag) {
  const std::string_view language = tag.substr(0, tag.find('-'));
  if (language != "zh") return std::string(language);
  const auto has = [tag](std::string_view part) { return tag.find(part) != std::string_view::npos; };
  return has("Hant") || has("-TW") || has("-HK") || has("-MO") ? "zh-tw" : "zh-cn";
}

Pattern patternFor(const std::string& language, bool isBold) {
  Pattern pattern(FcPatternCreate());
  FcPatternAddString(pattern.get(), FC_FAMILY, bytesOf("sans-serif"));
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
  if (!language.empty()) FcPatternAddString(pattern.get(), FC_LANG, bytesOf(language));
  FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

std::size_t countOf(FcPattern* font, const std::u32string& characters) {
  FcCharSet* covered = nullptr;
  if (FcPatternGetCharSet(font, FC_CHARSET, 0, &covered) != FcResultMatch) return 0;
  return static_cast<std::size_t>(
      std::ranges::count_if(characters, [covered](char32_t c) { return FcCharSetHasChar(covered, c); }));
}

InstalledFonts::Font describe(FcPattern* font) {
  FcChar8* name = nullptr;
  int weight = FC_WEIGHT_REGULAR;
  FcPatternGetString(font, FC_POSTSCRIPT_NAME, 0, &name);
  FcPatternGetInteger(font, FC_WEIGHT, 0, &weight);
  return {.name = name != nullptr ? reinterpret_cast<const char*>(name) : "",
          .isBold = weight >= FC_WEIGHT_DEMIBOLD};
}

}  // namespace

InstalledFonts::InstalledFonts(std::string_view language, bool isBold) {
  FcResult result = FcResultMatch;
  fonts_.reset(
      FcFontSort(nullptr, patternFor(fontconfigLanguage(language), isBold).get(), FcFalse, nullptr, &result));
}

InstalledFonts::Font InstalledFonts::bestFor(const std::u32string& characters,
                                             const std::function<bool(const Font&)>& isUsable) const {
  Font best;
  std::size_t most = 0;
  for (int index = 0; fonts_ && index < fonts_->nfont && most < characters.size(); ++index) {
    FcPattern* const candidate = fonts_->fonts[index];
    const std::size_t count = countOf(candidate, characters);
    if (count <= most) continue;
    Font font = describe(candidate);
    if (font.name.empty() || !isUsable(font)) continue;
    best = std::move(font);
    most = count;
  }
  return best;
}

}  // namespace karno::platform
