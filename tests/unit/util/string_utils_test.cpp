#include "util/string_utils.h"

#include <gmock/gmock.h>

#include <limits>

#include "fake_platform.h"

namespace karno {
namespace {

using test::FakePlatform;

const CharacterSet kVowels = [](char32_t c) {
  return std::u32string_view(U"aeiou\u00e4\U0001F600").find(c) != std::u32string_view::npos;
};

TEST(AppendingPathComponents, PutsOneSlashBetweenParts) {
  EXPECT_EQ(u_stringByAppendingPathComponents("/Library", {"Frameworks", "macFUSE.framework"}),
            "/Library/Frameworks/macFUSE.framework");
}

TEST(AppendingPathComponents, LeavesTheTextAsItIsForAnEmptyList) {
  EXPECT_EQ(u_stringByAppendingPathComponents("/a//b/", {}), "/a//b/");
}

TEST(AppendingPathComponents, CollapsesDoubledSeparators) {
  EXPECT_EQ(u_stringByAppendingPathComponents("/a/", {"/b/", "c"}), "/a/b/c");
  EXPECT_EQ(u_stringByAppendingPathComponents("/", {"tmp"}), "/tmp");
  EXPECT_EQ(u_stringByAppendingPathComponents("/a", {"b//c"}), "/a/b/c");
}

TEST(AppendingPathComponents, KeepsARelativePathRelative) {
  EXPECT_EQ(u_stringByAppendingPathComponents("a", {"b"}), "a/b");
  EXPECT_EQ(u_stringByAppendingPathComponents("", {"b"}), "b");
}

TEST(AppendingPathComponents, EndsWithoutASlash) {
  EXPECT_EQ(u_stringByAppendingPathComponents("/a", {"b/"}), "/a/b");
  EXPECT_EQ(u_stringByAppendingPathComponents("/a/", {""}), "/a");
}

TEST(CaptilisiedString, CapitalisesEveryWordAndLowersTheRest) {
  FakePlatform machine;

  EXPECT_EQ(u_captilisiedString("hello wORLD"), "Hello World");
}

TEST(CaptilisiedString, KeepsPunctuationAndBlanksWhereTheyWere) {
  FakePlatform machine;

  EXPECT_EQ(u_captilisiedString("  hello,\tworld!\n(again)  "), "  Hello,\tWorld!\n(Again)  ");
}

TEST(CaptilisiedString, KeepsAnEmptyTextAndOneWithoutWords) {
  FakePlatform machine;

  EXPECT_EQ(u_captilisiedString(""), "");
  EXPECT_EQ(u_captilisiedString(" ... -- !"), " ... -- !");
}

TEST(CaptilisiedString, TakesAnApostropheAsPartOfItsWord) {
  FakePlatform machine;

  EXPECT_EQ(u_captilisiedString("don't stop"), "Don't Stop");
}

TEST(CaptilisiedString, KnowsLettersOfAllOfUnicode) {
  FakePlatform machine;

  EXPECT_EQ(u_captilisiedString("éCOLE ßtraße ЖУРНАЛ ΣΟΦΟΣ ǆungla 日本 𐐨𐐀"),
            "École Sstraße Журнал Σοφος ǅungla 日本 𐐀𐐨");
}

TEST(CaptilisiedString, FollowsTheUsersLocale) {
  FakePlatform machine;
  machine.text.setLocale("tr_TR");

  EXPECT_EQ(u_captilisiedString("istanbul DIŞ"), "İstanbul Dış");
}

TEST(ContainsString, IsLiteralAndMindsCase) {
  EXPECT_TRUE(u_containsString("Karno(Fuse).app", "(Fuse)"));
  EXPECT_FALSE(u_containsString("Karno(Fuse).app", "(fuse)"));
  EXPECT_FALSE(u_containsString("Karno", "Karno.app"));
}

TEST(ContainsString, FindsNoEmptyText) {
  EXPECT_FALSE(u_containsString("Karno", ""));
  EXPECT_FALSE(u_containsString("", ""));
}

TEST(ContainsString, FindsTheTextInItself) { EXPECT_TRUE(u_containsString("é", "é")); }

struct Prefix {
  std::string text;
  bool expected;
};

void PrintTo(const Prefix& prefix, std::ostream* out) { *out << '"' << prefix.text << '"'; }

class HTTPSPrefix : public ::testing::TestWithParam<Prefix> {};

TEST_P(HTTPSPrefix, IsLoose) {
  FakePlatform machine;

  EXPECT_EQ(u_hasHTTPSPrefix(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, HTTPSPrefix,
                         ::testing::Values(Prefix{"https://", true}, Prefix{"http://x", true},
                                           Prefix{"HTTPS://x", true}, Prefix{"httpsss://x", true},
                                           Prefix{"HtTpSsS://x", true}, Prefix{"ftp://x", false},
                                           Prefix{"", false}, Prefix{" https://x", false},
                                           Prefix{"https:/x", false}, Prefix{"htt://x", false},
                                           Prefix{"x\nhttps://x", false}));

TEST(HasPathExtension, ComparesTheLowercasedExtensionWithTheList) {
  FakePlatform machine;

  EXPECT_TRUE(u_hasPathExtension("archive.ZIP", {"dmg", "zip"}));
  EXPECT_FALSE(u_hasPathExtension("archive.ZIP", {"ZIP"}));
  EXPECT_FALSE(u_hasPathExtension("archive.zip2", {"zip"}));
}

TEST(HasPathExtension, IsFalseWithoutAnExtension) {
  FakePlatform machine;

  EXPECT_FALSE(u_hasPathExtension("archive", {"", "archive"}));
  EXPECT_FALSE(u_hasPathExtension("", {""}));
  EXPECT_FALSE(u_hasPathExtension(".zip", {"zip", ""}));
  EXPECT_FALSE(u_hasPathExtension("/folder.zip/archive", {"zip"}));
}

TEST(HasPathExtension, IsFalseForAnEmptyList) {
  FakePlatform machine;

  EXPECT_FALSE(u_hasPathExtension("archive.zip", {}));
}

TEST(HasPathExtension, TakesTheLastOfSeveralAndPassesOverATrailingSlash) {
  FakePlatform machine;

  EXPECT_TRUE(u_hasPathExtension("/a/archive.tar.GZ", {"gz"}));
  EXPECT_FALSE(u_hasPathExtension("/a/archive.tar.GZ", {"tar"}));
  EXPECT_TRUE(u_hasPathExtension("/Applications/Karno.app/", {"app"}));
}

TEST(HasPathExtension, LowersLettersOfAllOfUnicode) {
  FakePlatform machine;

  EXPECT_TRUE(u_hasPathExtension("datei.ÄÖÜ", {"äöü"}));
  EXPECT_TRUE(u_hasPathExtension("файл.ТЕКСТ", {"текст"}));
}

TEST(HasPathExtension, DoesNotFollowTheUsersLocale) {
  FakePlatform machine;
  machine.text.setLocale("tr_TR");

  EXPECT_TRUE(u_hasPathExtension("archive.ZIP", {"zip"}));
}

TEST(PathEncodedString, KeepsWhatMayStandInAPath) {
  EXPECT_EQ(u_pathEncodedString("/Az09-._~!$&'()*+,=:@/x"), "/Az09-._~!$&'()*+,=:@/x");
}

TEST(PathEncodedString, EncodesEverythingElseOfAscii) {
  EXPECT_EQ(u_pathEncodedString(" \"#%;<>?[\\]^`{|}\x01\x7F"),
            "%20%22%23%25%3B%3C%3E%3F%5B%5C%5D%5E%60%7B%7C%7D%01%7F");
}

TEST(PathEncodedString, EncodesUnicodeByItsBytesInCapitals) {
  EXPECT_EQ(u_pathEncodedString("größe/日/😀"), "gr%C3%B6%C3%9Fe/%E6%97%A5/%F0%9F%98%80");
}

TEST(PathEncodedString, KeepsAnEmptyText) { EXPECT_EQ(u_pathEncodedString(""), ""); }

TEST(OnlyContainsCharactersInSet, IsTrueWhenNoCharacterLiesOutside) {
  EXPECT_TRUE(u_onlyContainsCharactersInSet("aeä😀", kVowels));
  EXPECT_FALSE(u_onlyContainsCharactersInSet("aeb", kVowels));
  EXPECT_FALSE(u_onlyContainsCharactersInSet("😁", kVowels));
}

TEST(OnlyContainsCharactersInSet, IsTrueForAnEmptyTextAndAnySet) {
  EXPECT_TRUE(u_onlyContainsCharactersInSet("", kVowels));
  EXPECT_TRUE(u_onlyContainsCharactersInSet("", [](char32_t) { return false; }));
}

TEST(OnlyContainsCharactersInSet, TakesBytesThatAreNoUTF8AsTheReplacementCharacter) {
  EXPECT_FALSE(u_onlyContainsCharactersInSet("a\xC3", kVowels));
  EXPECT_TRUE(u_onlyContainsCharactersInSet("\xC3", [](char32_t c) { return c == 0xFFFD; }));
  EXPECT_TRUE(u_onlyContainsCharactersInSet("\xED\xA0\x80", [](char32_t c) { return c == 0xFFFD; }));
}

TEST(IsEqualToCaseInsensitive, ComparesAllOfUnicodeByCase) {
  FakePlatform machine;

  EXPECT_TRUE(u_isEqualToCaseInsensitive("Karno.APP", "karno.app"));
  EXPECT_TRUE(u_isEqualToCaseInsensitive("ÄRGER журнал", "ärger ЖУРНАЛ"));
  EXPECT_TRUE(u_isEqualToCaseInsensitive("", ""));
  EXPECT_FALSE(u_isEqualToCaseInsensitive("a", "ä"));
  EXPECT_FALSE(u_isEqualToCaseInsensitive("karno", "karno "));
}

TEST(TrimmingWhitespace, KnowsThatOfAllOfUnicode) {
  EXPECT_EQ(trimmingWhitespaceAndNewlines("\u2003\u00A0 a\u3000b\u2028\u205F\r\n"), "a\u3000b");
  EXPECT_EQ(trimmingWhitespaceAndNewlines("\u1680\u2029\u202F\u2000\u200A\u0085\t"), "");
  EXPECT_EQ(trimmingWhitespaceAndNewlines("ä\x1F"), "ä\x1F");
}

TEST(StringForInteger, IsItsDecimalText) {
  EXPECT_EQ(u_stringForInteger(0), "0");
  EXPECT_EQ(u_stringForInteger(-42), "-42");
  EXPECT_EQ(u_stringForInteger(1'234'567), "1234567");
  EXPECT_EQ(u_stringForInteger(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
  EXPECT_EQ(u_stringForInteger(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

}  // namespace
}  // namespace karno
