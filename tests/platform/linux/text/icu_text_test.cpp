#include "platform/linux/text/icu_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <time.h>

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "../../support/scoped_environment.h"
#include "elements_are.h"
#include "platform/linux/text/icu_date_formatter.h"
#include "platform/linux/text/plain_date_formatter.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using test::ScopedEnvironment;

// 2024-03-05T13:07:09.042Z
constexpr Date kMoment{std::chrono::milliseconds(1'709'644'029'042)};

constexpr const char* kPlainPattern = "yyyy-MM-dd HH:mm:ss:|ZZZ yyyyMMdd";

std::vector<std::string> wordsOf(const Text& text, const std::string& input) {
  std::vector<std::string> words;
  for (const TextRange& range : text.wordRanges(input))
    words.push_back(input.substr(range.begin, range.end - range.begin));
  return words;
}

TEST(IcuDates, HaveTheUnicodePatternLetters) {
  const IcuText text("en_GB", "Europe/Vienna");

  EXPECT_EQ(text.makeDateFormatter("yyyy-MM-dd HH:mm:ss:SSSZZZ")->stringFromDate(kMoment),
            "2024-03-05 14:07:09:042+0100");
  EXPECT_EQ(text.makeDateFormatter("yyyyMMddHHmmssSSS")->stringFromDate(kMoment), "20240305140709042");
  EXPECT_EQ(text.makeDateFormatter("dd MMM yyyy HH:mm:ss")->stringFromDate(kMoment), "05 Mar 2024 14:07:09");
}

TEST(IcuDates, NameMonthsInTheUsersLanguage) {
  EXPECT_EQ(IcuText("fr_FR", "UTC").makeDateFormatter("d MMMM")->stringFromDate(kMoment), "5 mars");
  EXPECT_EQ(
      IcuText("de_AT", "UTC").makeDateFormatter("d. MMMM")->stringFromDate(Date(std::chrono::seconds(0))),
      "1. Jänner");
}

TEST(IcuDates, FollowDaylightSaving) {
  const auto formatter = IcuText("en_US", "Europe/Vienna").makeDateFormatter("HH:mm:ss ZZZ");
  const Date lastWinterSecond{std::chrono::seconds(1'711'846'799)};  // 2024-03-31T00:59:59Z

  EXPECT_EQ(formatter->stringFromDate(lastWinterSecond), "01:59:59 +0100");
  EXPECT_EQ(formatter->stringFromDate(lastWinterSecond + std::chrono::seconds(1)), "03:00:00 +0200");
}

TEST(IcuDates, CutMillisecondsAlsoBefore1970) {
  const auto formatter = IcuText("en_US", "UTC").makeDateFormatter("yyyy-MM-dd HH:mm:ss.SSS");

  EXPECT_EQ(formatter->stringFromDate(Date(std::chrono::nanoseconds(1'999'999))), "1970-01-01 00:00:00.001");
  EXPECT_EQ(formatter->stringFromDate(Date(std::chrono::nanoseconds(-1))), "1969-12-31 23:59:59.999");
}

TEST(IcuDates, FollowAChangeOfTheTimeZoneWhileRunning) {
  const ScopedEnvironment zone("TZ", "Europe/Vienna");
  const auto formatter = IcuText("en_US").makeDateFormatter("HH:mm ZZZ");

  EXPECT_EQ(formatter->stringFromDate(kMoment), "14:07 +0100");
  zone.set("America/New_York");
  EXPECT_EQ(formatter->stringFromDate(kMoment + std::chrono::seconds(1)), "08:07 -0500");
  zone.set("UTC");
  EXPECT_EQ(formatter->stringFromDate(kMoment + std::chrono::seconds(2)), "13:07 +0000");
}

TEST(IcuDates, AgreeWithTheMachinesClock) {
  const ScopedEnvironment zone("TZ", std::nullopt);
  ::tzset();
  const auto formatter = IcuText("en_US").makeDateFormatter("yyyy-MM-dd HH:mm:ss");
  const time_t seconds = 1'709'644'029;
  tm local = {};
  ::localtime_r(&seconds, &local);
  char expected[32] = {};
  ::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", &local);

  EXPECT_EQ(formatter->stringFromDate(kMoment), expected);
}

TEST(IcuDates, OfPlainNumbersAreThoseOfIcusFormatterInEveryLocale) {
  std::int32_t count = 0;
  const icu::Locale* const locales = icu::Locale::getAvailableLocales(count);
  int plain = 0;
  for (const icu::Locale& locale : std::span(locales, static_cast<std::size_t>(count))) {
    const auto formatter = makePlainDateFormatter(kPlainPattern, locale, "Europe/Vienna");
    if (formatter == nullptr) continue;
    ++plain;
    EXPECT_EQ(formatter->stringFromDate(kMoment),
              IcuDateFormatter(kPlainPattern, locale, "Europe/Vienna").stringFromDate(kMoment))
        << locale.getName();
  }

  EXPECT_GT(plain, count / 2);
}

TEST(IcuDates, OfPlainNumbersAreThoseOfIcusFormatterAtEveryMoment) {
  const icu::Locale locale("en_US");
  for (const char* const zone : {"UTC", "Europe/Vienna", "America/St_Johns", "Asia/Kathmandu"}) {
    const auto plain = makePlainDateFormatter(kPlainPattern, locale, zone);
    const IcuDateFormatter icus(kPlainPattern, locale, zone);
    ASSERT_NE(plain, nullptr);
    for (const std::int64_t seconds :
         {-1LL, 0LL, 951'782'400LL, 1'711'846'799LL, 1'711'846'800LL, 4'102'444'799LL}) {
      const Date moment{std::chrono::seconds(seconds) - std::chrono::nanoseconds(1)};
      EXPECT_EQ(plain->stringFromDate(moment), icus.stringFromDate(moment)) << zone << " " << seconds;
    }
  }
}

TEST(IcuDates, OfALocaleWithDigitsOrACalendarOfItsOwnAreIcus) {
  for (const char* const locale :
       {"ar_EG", "th_TH", "fa_IR", "en_US@calendar=buddhist", "en_US@numbers=deva"}) {
    EXPECT_EQ(makePlainDateFormatter(kPlainPattern, icu::Locale(locale), "UTC"), nullptr) << locale;
  }
  EXPECT_EQ(IcuText("th_TH", "UTC").makeDateFormatter("yyyy-MM-dd")->stringFromDate(kMoment), "2567-03-05");
  EXPECT_EQ(IcuText("ar_EG", "UTC").makeDateFormatter("HH:mm")->stringFromDate(kMoment), "١٣:٠٧");
}

TEST(IcuDates, OfMoreThanPlainNumbersAreIcus) {
  for (const char* const pattern : {"", "d", "yy", "SSS", "MMM", "ZZZZ", "'yyyy'", "%Y", "{", "}", "a"}) {
    EXPECT_EQ(makePlainDateFormatter(pattern, icu::Locale("en_US"), "UTC"), nullptr) << pattern;
  }
  EXPECT_EQ(IcuText("en_US", "UTC").makeDateFormatter("HH 'HH' %Y{}")->stringFromDate(kMoment),
            "13 HH %2024{}");
}

TEST(IcuDates, CanBeFormattedByManyThreadsAtOnce) {
  const IcuText text("en_US", "Europe/Vienna");
  const auto icus = text.makeDateFormatter("yyyy-MM-dd HH:mm:ss:SSS");
  const auto plain = text.makeDateFormatter("yyyy-MM-dd HH:mm:ss");
  std::vector<std::vector<std::string>> texts(4);
  {
    std::vector<std::jthread> threads;
    for (auto& own : texts) {
      threads.emplace_back([&] {
        for (int count = 0; count < 1000; ++count) {
          own.push_back(icus->stringFromDate(kMoment));
          own.push_back(plain->stringFromDate(kMoment) + ":042");
        }
      });
    }
  }

  for (const auto& own : texts) EXPECT_THAT(own, testing::Each("2024-03-05 14:07:09:042"));
}

TEST(IcuWords, LeaveOutBlanksAndPunctuation) {
  const IcuText text("en_US");

  EXPECT_THAT(wordsOf(text, "  hello, wORLD! it's 3.5 o'clock"),
              ElementsAre("hello", "wORLD", "it's", "3.5", "o'clock"));
  EXPECT_THAT(wordsOf(text, ""), ElementsAre());
  EXPECT_THAT(wordsOf(text, " ... "), ElementsAre());
}

TEST(IcuWords, AreFoundInManyScripts) {
  const IcuText text("en_US");

  EXPECT_THAT(wordsOf(text, "Grüße, мир"), ElementsAre("Grüße", "мир"));
  EXPECT_THAT(wordsOf(text, "カタカナ"), ElementsAre("カタカナ"));
  EXPECT_THAT(wordsOf(text, "你好世界"), ElementsAre("你好", "世界"));
}

TEST(IcuWords, AreCountedInBytesOfTheOriginalAlsoWhenItIsNoUTF8) {
  const IcuText text("en_US");

  EXPECT_THAT(text.wordRanges("ab \xFF\xFF cd \xE2\x82"), ElementsAre(TextRange{0, 2}, TextRange{6, 8}));
}

TEST(IcuCase, CapitalisesByLocale) {
  EXPECT_EQ(IcuText("en_US").capitalise("wORLD"), "World");
  EXPECT_EQ(IcuText("en_US").capitalise("ijs"), "Ijs");
  EXPECT_EQ(IcuText("nl_NL").capitalise("ijs"), "IJs");
  EXPECT_EQ(IcuText("en_US").capitalise("istanbul"), "Istanbul");
  EXPECT_EQ(IcuText("tr_TR").capitalise("istanbul"), "İstanbul");
  EXPECT_EQ(IcuText("de_DE").capitalise("ßa"), "Ssa");
  EXPECT_EQ(IcuText("en_US").capitalise("ǆ"), "ǅ");
  EXPECT_EQ(IcuText("en_US").capitalise(""), "");
}

TEST(IcuCase, LowersWithoutRegardToTheLocale) {
  EXPECT_EQ(IcuText("tr_TR").lowercase("ZIP ÄÖÜ ΑΣ"), "zip äöü ας");
}

TEST(IcuCase, UppersWithoutRegardToTheLocale) {
  EXPECT_EQ(IcuText("tr_TR").uppercase("istanbul äöü straße ας"), "ISTANBUL ÄÖÜ STRASSE ΑΣ");
  EXPECT_EQ(IcuText("el_GR").uppercase("ά"), "Ά");
  EXPECT_EQ(IcuText("en_US").uppercase(""), "");
}

TEST(IcuText, OrdersDigitsByTheirValue) {
  const IcuText text("en_US");

  EXPECT_LT(text.compareNumerically("4.4.1", "4.10.0"), 0);
  EXPECT_EQ(text.compareNumerically("13.0", "13.00"), 0);
  EXPECT_GT(text.compareNumerically("13.0.0", "13.0"), 0);
}

TEST(IcuCase, ComparesWithoutRegardToCase) {
  const IcuText text("en_US");

  EXPECT_TRUE(text.isEqualCaseInsensitive("Straße", "STRASSE"));
  EXPECT_TRUE(text.isEqualCaseInsensitive("caf\xC3\xA9", "CAFE\xCC\x81"));  // one character and two
  EXPECT_TRUE(text.isEqualCaseInsensitive("", ""));
  EXPECT_FALSE(text.isEqualCaseInsensitive("a", "ab"));
  EXPECT_FALSE(text.isEqualCaseInsensitive("a", "b"));
}

TEST(IcuCase, CountsBytesThatAreNoUTF8AsReplacementCharacters) {
  const IcuText text("en_US");

  EXPECT_EQ(text.lowercase("A\xFFZ"), "a\xEF\xBF\xBDz");
  EXPECT_EQ(text.capitalise("a\xFFZ"), "A\xEF\xBF\xBDz");
  EXPECT_TRUE(text.isEqualCaseInsensitive("\xFF", "\xEF\xBF\xBD"));
}

TEST(IcuExpressions, AreSearchedAnywhereInTheText) {
  const IcuText text("en_US");

  EXPECT_TRUE(text.containsMatch("^https*://", "HTTPSSS://example", true));
  EXPECT_FALSE(text.containsMatch("^https*://", "HTTPS://example", false));
  EXPECT_FALSE(text.containsMatch("^https*://", "ftp://example", true));
  EXPECT_TRUE(text.containsMatch("b+", "aabb", false));
  EXPECT_TRUE(text.containsMatch("", "", false));
  EXPECT_TRUE(text.containsMatch("ü.e", "Grüße", false));
}

TEST(IcuExpressions, ABadOneOccursNowhere) {
  const IcuText text("en_US");

  EXPECT_FALSE(text.containsMatch("(", "(", false));
  EXPECT_FALSE(text.containsMatch("[a", "a", false));
}

TEST(IcuExpressions, EndWhenTheyTakeForEver) {
  const IcuText text("en_US");
  const auto before = std::chrono::steady_clock::now();

  EXPECT_FALSE(text.containsMatch("^(a+)+$", std::string(60, 'a') + "b", false));

  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(20));
}

TEST(IcuExpressions, TakeAnyBytes) {
  const IcuText text("en_US");

  EXPECT_TRUE(text.containsMatch("b", "\xFF\xFE b", false));
  EXPECT_FALSE(text.containsMatch("\xFF(", "\xFF", false));
}

}  // namespace
}  // namespace karno::platform
