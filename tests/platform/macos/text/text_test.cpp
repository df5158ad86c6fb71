#include "platform/macos/text/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <chrono>

#include "../../support/standard_error_capture.h"
#include "../core_foundation.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;
using ::testing::IsEmpty;

objc::Object mutableString() {
  const objc::Id mutableClass = reinterpret_cast<objc::Id>(objc_getClass("NSMutableString"));
  return objc::Object::adopting(objc::send(objc::send(mutableClass, "alloc"), "init"));
}

class MacText : public testing::Test {
 protected:
  MacText() {
    foundation_.answer("locale", objc::string("de_DE"));
    foundation_.answer("tokenizer", objc::string("the words"));
    foundation_.answer("mutable copy", mutableString());
  }

  const objc::AutoreleasePool pool_;
  CoreFoundation foundation_;
  const FoundationText text_;
};

// The first character takes two bytes and one unit.
TEST_F(MacText, FindsTheWordsThatTheUsersLocaleSees) {
  foundation_.words = {{0, 2}, {3, 3}};

  EXPECT_THAT(text_.wordRanges("äb cde."), ElementsAre(TextRange{0, 3}, TextRange{4, 7}));
  EXPECT_THAT(foundation_.lines(),
              ElementsAre("CFLocaleCopyCurrent",
                          "CFStringTokenizerCreate null \"äb cde.\" from 0 length 7 options 0 by locale",
                          "CFStringTokenizerAdvanceToNextToken tokenizer",
                          "CFStringTokenizerGetCurrentTokenRange tokenizer",
                          "CFStringTokenizerAdvanceToNextToken tokenizer",
                          "CFStringTokenizerGetCurrentTokenRange tokenizer",
                          "CFStringTokenizerAdvanceToNextToken tokenizer"));
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacText, FindsNoWordsWithoutATokenizer) {
  foundation_.answer("tokenizer", objc::Object());
  foundation_.words = {{0, 1}};

  EXPECT_THAT(text_.wordRanges("a"), IsEmpty());
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacText, FindsWordsWithoutALocale) {
  foundation_.answer("locale", objc::Object());
  foundation_.words = {{0, 1}};

  EXPECT_THAT(text_.wordRanges("a"), ElementsAre(TextRange{0, 1}));
}

TEST_F(MacText, StopsWhereTheTokenizerHasNoRange) {
  foundation_.words = {{0, 1}, {-1, 0}, {0, 1}};

  EXPECT_THAT(text_.wordRanges("a b"), ElementsAre(TextRange{0, 1}));
}

TEST_F(MacText, WhatIsRaisedMeansNoWordsAndEndsOnTheConsole) {
  const StandardErrorCapture console;
  foundation_.words = {{0, 1}};
  foundation_.raisingFunction = "CFStringTokenizerGetCurrentTokenRange";

  EXPECT_THAT(text_.wordRanges("a"), IsEmpty());
  EXPECT_EQ(foundation_.ownedCount(), 0);
  EXPECT_EQ(console.text(), "finding words: raised by a stand-in\n");
}

TEST_F(MacText, CapitalisesByTheUsersLocale) {
  EXPECT_EQ(text_.capitalise("wORD"), "CFStringCapitalize");
  EXPECT_THAT(foundation_.lines(),
              ElementsAre("CFLocaleCopyCurrent", "CFStringCreateMutableCopy null 0 \"wORD\"",
                          "CFStringCapitalize \"wORD\" by locale"));
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacText, ChangesCaseWithoutRegardToTheLocale) {
  EXPECT_EQ(text_.lowercase("Ä"), "CFStringLowercase");
  EXPECT_EQ(text_.uppercase("ä"), "CFStringUppercase");
  EXPECT_THAT(foundation_.lines(),
              ElementsAre("CFStringCreateMutableCopy null 0 \"Ä\"", "CFStringLowercase \"Ä\" by null",
                          "CFStringCreateMutableCopy null 0 \"ä\"", "CFStringUppercase \"ä\" by null"));
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacText, LeavesATextThatCannotBeCopied) {
  foundation_.answer("mutable copy", objc::Object());

  EXPECT_EQ(text_.capitalise("wORD"), "wORD");
  EXPECT_EQ(text_.lowercase("Ä"), "Ä");
  EXPECT_EQ(text_.uppercase("ä"), "ä");
  EXPECT_EQ(foundation_.ownedCount(), 0);
}

TEST_F(MacText, WhatIsRaisedLeavesTheTextAndEndsOnTheConsole) {
  const StandardErrorCapture console;
  foundation_.raisingFunction = "CFLocaleCopyCurrent";
  EXPECT_EQ(text_.capitalise("wORD"), "wORD");

  foundation_.raisingFunction = "CFStringLowercase";
  EXPECT_EQ(text_.lowercase("Ä"), "Ä");
  EXPECT_EQ(foundation_.ownedCount(), 0);
  EXPECT_EQ(console.text(),
            "changing case: raised by a stand-in\n"
            "changing case: raised by a stand-in\n");
}

TEST_F(MacText, MakesItsOtherPartsByFoundation) {
  EXPECT_EQ(text_.makeRegularExpression("b+").value()->firstMatch("abbc"), "bb");
  EXPECT_FALSE(text_.makeRegularExpression("("));
  EXPECT_EQ(text_.makeDateFormatter("yyyy")->stringFromDate(Date(std::chrono::hours(24 * 40))), "1970");
  EXPECT_TRUE(text_.isEqualCaseInsensitive("Ä", "ä"));
  EXPECT_TRUE(text_.containsMatch("B", "abc", true));
  EXPECT_LT(text_.compareNumerically("9", "10"), 0);
}

}  // namespace
}  // namespace karno::platform::trial
