#include "platform/linux/gnustep/installed_fonts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <filesystem>
#include <set>

#include "../../support/temporary_folder.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;
using Font = InstalledFonts::Font;
using ::testing::IsEmpty;

const auto kAny = [](const Font&) { return true; };

std::u32string charactersOf(const std::string& utf8) {
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
  std::u32string characters;
  for (int at = 0; at < text.length(); at = text.moveIndex32(at, 1))
    characters += static_cast<char32_t>(text.char32At(at));
  return characters;
}

std::u32string lettersOfAllTables() {
  std::set<char32_t> letters;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(KARNO_SOURCES) / "resources")) {
    if (entry.path().extension() != ".json" && entry.path().extension() != ".strings") continue;
    for (const char32_t c : charactersOf(test::contentOf(entry.path()))) {
      if (c > 0x20) letters.insert(c);
    }
  }
  return {letters.begin(), letters.end()};
}

TEST(InstalledFonts, HaveEveryLetterOfTheLaunchersTexts) {
  const InstalledFonts fonts("", false);
  const std::u32string letters = lettersOfAllTables();
  ASSERT_GT(letters.size(), 500U);

  std::u32string missing;
  for (const char32_t letter : letters) {
    if (fonts.bestFor({letter}, kAny).name.empty()) missing += letter;
  }

  EXPECT_THAT(missing, IsEmpty());
}

TEST(InstalledFonts, GiveTheWeightThatIsAskedForWhereThereIsOne) {
  EXPECT_EQ(InstalledFonts("de", true).bestFor(U"Karno", kAny).isBold, true);
  EXPECT_EQ(InstalledFonts("de", false).bestFor(U"Karno", kAny).isBold, false);
}

TEST(InstalledFonts, GiveTheOneThatHasTheMostOfTheCharacters) {
  const InstalledFonts fonts("en", false);

  const Font latin = fonts.bestFor(U"Karno", kAny);
  const Font mixed = fonts.bestFor(U"Kё错误한국어", kAny);

  EXPECT_FALSE(latin.name.empty());
  EXPECT_NE(mixed.name, latin.name);
  EXPECT_EQ(fonts.bestFor(U"错误한국어", kAny).name, mixed.name);
}

TEST(InstalledFonts, PassOverOneThatCannotBeUsed) {
  const InstalledFonts fonts("en", false);
  const std::string first = fonts.bestFor(U"Karno", kAny).name;

  const Font next = fonts.bestFor(U"Karno", [&](const Font& font) { return font.name != first; });

  EXPECT_FALSE(next.name.empty());
  EXPECT_NE(next.name, first);
}

TEST(InstalledFonts, GiveNoneWhereNoneHasTheCharacter) {
  EXPECT_EQ(InstalledFonts("en", false).bestFor(U"\U0010FFFD", kAny).name, "");
  EXPECT_EQ(InstalledFonts("en", false).bestFor(U"Karno", [](const Font&) { return false; }).name, "");
}

TEST(InstalledFonts, AreOrderedForTheLanguageOfATag) {
  for (const char* tag : {"zh-Hant-HK", "zh-TW", "zh-Hans", "ja-JP", "ko"})
    EXPECT_FALSE(InstalledFonts(tag, true).bestFor(U"一", kAny).name.empty()) << tag;
}

}  // namespace
}  // namespace karno::platform
