#pragma once
#include <fontconfig/fontconfig.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace karno::platform {

// The machine's fonts as fontconfig orders them for texts in one language and weight. Reading them takes some
// milliseconds; safe from any thread afterwards.
class InstalledFonts {
 public:
  struct Font {
    std::string name;  // the PostScript name, by which GNUstep knows it
    bool isBold = false;
  };

  // `language`: a tag such as "zh-Hant-TW"; empty for none.
  InstalledFonts(std::string_view language, bool isBold);

  // The first of those that have the most of these characters; a font that `isUsable` refuses does not count.
  // Without a name where none has any of them.
  Font bestFor(const std::u32string& characters, const std::function<bool(const Font&)>& isUsable) const;

 private:
  struct Destroy {
    void operator()(FcFontSet* fonts) const { FcFontSetDestroy(fonts); }
  };

  std::unique_ptr<FcFontSet, Destroy> fonts_;
};

}  // namespace karno::platform
