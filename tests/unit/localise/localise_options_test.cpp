#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "localise/karno_localise.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using ::testing::IsEmpty;

constexpr const char* kSentences =
    R"({"MESSAGE_ARE_YOU_SURE_CONTINUE": "Really go on?", "MESSAGE_CONTACT_SYS_ADMIN": "Ask them. Please."})";

std::string applied(const std::string& text, KarnoLocalise::Options options) {
  return KarnoLocalise::applyOptionsToString(text, options);
}

TEST(LocaliseOptions, HaveTheirFixedBits) {
  EXPECT_THAT((std::vector<std::uint32_t>{LocaliseOptionAreYouSure, LocaliseOptionContactSysAdmin,
                                          LocaliseOptionEllipsis, LocaliseOptionQuestionMark,
                                          LocaliseOptionNewLineAfterFirstSentence, LocaliseOptionUppercase,
                                          LocaliseOptionCapitalised, LocaliseOptionFirstLetterUppercase}),
              ElementsAre(1u, 2u, 4u, 8u, 16u, 32u, 64u, 128u));
}

TEST(LocaliseOptions, NoneLeavesTheTextAlone) {
  FakePlatform machine;

  EXPECT_EQ(applied("one. two", 0), "one. two");
  EXPECT_EQ(applied("one. two", 256), "one. two");
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(LocaliseOptions, AppendThreePointsAndThenAQuestionMark) {
  FakePlatform machine;

  EXPECT_EQ(applied("Open", LocaliseOptionEllipsis), "Open...");
  EXPECT_EQ(applied("Open", LocaliseOptionQuestionMark), "Open?");
  EXPECT_EQ(applied("Open", LocaliseOptionQuestionMark | LocaliseOptionEllipsis), "Open...?");
  EXPECT_EQ(applied("", LocaliseOptionEllipsis), "...");
}

TEST(LocaliseOptions, BreakTheLineAfterTheFirstSentenceOnly) {
  FakePlatform machine;

  EXPECT_EQ(applied("First. Second. Third", LocaliseOptionNewLineAfterFirstSentence),
            "First.\nSecond. Third");
  EXPECT_EQ(applied("First.Second", LocaliseOptionNewLineAfterFirstSentence), "First.Second");
  EXPECT_EQ(applied("First.  Second", LocaliseOptionNewLineAfterFirstSentence), "First.\n Second");
  EXPECT_EQ(applied("First. ", LocaliseOptionNewLineAfterFirstSentence), "First.\n");
  EXPECT_EQ(applied("First.", LocaliseOptionNewLineAfterFirstSentence), "First.");
}

TEST(LocaliseOptions, AppendTheSentencesAfterAnEmptyLineEach) {
  FakePlatform machine;
  machine.withStrings(kSentences);

  EXPECT_EQ(applied("Quit", LocaliseOptionAreYouSure), "Quit\n\nReally go on?");
  EXPECT_EQ(applied("Quit", LocaliseOptionContactSysAdmin), "Quit\n\nAsk them. Please.");
  EXPECT_EQ(applied("Quit", LocaliseOptionContactSysAdmin | LocaliseOptionAreYouSure),
            "Quit\n\nReally go on?\n\nAsk them. Please.");
}

TEST(LocaliseOptions, BreakNoLineInTheSentencesThatFollow) {
  FakePlatform machine;
  machine.withStrings(kSentences);

  EXPECT_EQ(applied("Quit", LocaliseOptionNewLineAfterFirstSentence | LocaliseOptionContactSysAdmin),
            "Quit\n\nAsk them. Please.");
}

TEST(LocaliseOptions, BreakNoLineInTheQuestionThatFollows) {
  FakePlatform machine;
  machine.withStrings(R"({"MESSAGE_ARE_YOU_SURE_CONTINUE": "It takes time. Really go on?"})");

  EXPECT_EQ(applied("Quit", LocaliseOptionNewLineAfterFirstSentence | LocaliseOptionAreYouSure),
            "Quit\n\nIt takes time. Really go on?");
}

TEST(LocaliseOptions, WriteTheWholeTextInUpperCase) {
  FakePlatform machine;
  machine.withStrings(kSentences);

  EXPECT_EQ(applied("straße", LocaliseOptionUppercase), "STRASSE");
  EXPECT_EQ(applied("Quit", LocaliseOptionAreYouSure | LocaliseOptionUppercase), "QUIT\n\nREALLY GO ON?");
}

TEST(LocaliseOptions, CapitaliseEveryWordAndAlsoThoseInUpperCase) {
  FakePlatform machine;
  machine.withStrings(kSentences);

  EXPECT_EQ(applied("hello, wORLD", LocaliseOptionCapitalised), "Hello, World");
  EXPECT_EQ(applied("hello", LocaliseOptionCapitalised | LocaliseOptionUppercase), "Hello");
  EXPECT_EQ(applied("quit", LocaliseOptionCapitalised | LocaliseOptionAreYouSure), "Quit\n\nReally Go On?");
}

TEST(LocaliseOptions, WriteTheFirstLetterInUpperCaseAndKeepTheRest) {
  FakePlatform machine;

  EXPECT_EQ(applied("hello wORLD", LocaliseOptionFirstLetterUppercase), "Hello wORLD");
  EXPECT_EQ(applied("h", LocaliseOptionFirstLetterUppercase), "H");
  EXPECT_EQ(applied("", LocaliseOptionFirstLetterUppercase), "");
  EXPECT_EQ(applied("éa", LocaliseOptionFirstLetterUppercase), "Éa");
  EXPECT_EQ(applied("1a", LocaliseOptionFirstLetterUppercase), "1a");
  EXPECT_EQ(applied("ßa", LocaliseOptionFirstLetterUppercase), "SSa");
}

TEST(LocaliseOptions, AreAllAppliedInOneOrder) {
  FakePlatform machine;
  machine.withStrings(kSentences);

  EXPECT_EQ(applied("one. two", 255), "One.\nTwo...?\n\nReally Go On?\n\nAsk Them. Please.");
  EXPECT_EQ(applied("one. two", 255 - LocaliseOptionCapitalised),
            "ONE.\nTWO...?\n\nREALLY GO ON?\n\nASK THEM. PLEASE.");
}

TEST(LocaliseOptions, LookEachSentenceUpOnce) {
  FakePlatform machine;
  machine.withStrings("{}");

  EXPECT_EQ(applied("Quit", LocaliseOptionAreYouSure), "Quit\n\nMESSAGE_ARE_YOU_SURE_CONTINUE");
  EXPECT_EQ(applied("Stop", LocaliseOptionAreYouSure), "Stop\n\nMESSAGE_ARE_YOU_SURE_CONTINUE");
  applied("Quit", LocaliseOptionContactSysAdmin);
  applied("Stop", LocaliseOptionContactSysAdmin);

  EXPECT_THAT(machine.console(),
              ElementsAre("--- KarnoLocalise token 'MESSAGE_ARE_YOU_SURE_CONTINUE' not found",
                          "--- KarnoLocalise token 'MESSAGE_CONTACT_SYS_ADMIN' not found"));
}

TEST(LocaliseOptions, TellTheSentencesThatTheyAppend) {
  FakePlatform machine;
  machine.withStrings(kSentences);
  KarnoLocalise& localise = KarnoLocalise::instance();

  EXPECT_EQ(localise.optionAreYouSure(), "Really go on?");
  EXPECT_EQ(localise.optionContactSysAdmin(), "Ask them. Please.");
  EXPECT_EQ(localise.defaultStrings()->at("MESSAGE_CONTACT_SYS_ADMIN"), "Ask them. Please.");
}

}  // namespace
}  // namespace karno
