#include "platform/macos/text/date_formatter.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;

objc::Id formatterWithoutArguments(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

void setLocale(objc::Id, objc::Sel selector, objc::Id locale) {
  recordAndAnswer(selector,
                  locale == StandIns::current().answerTo("autoupdatingCurrentLocale") ? "that" : "another");
}

void setTimeZone(objc::Id, objc::Sel selector, objc::Id timeZone) {
  recordAndAnswer(selector, timeZone == StandIns::current().answerTo("localTimeZone") ? "that" : "another");
}

void setDateFormat(objc::Id, objc::Sel selector, objc::Id pattern) {
  recordAndAnswer(selector, shown(pattern));
}

objc::Id stringFromDate(objc::Id, objc::Sel selector, objc::Id date) {
  return recordAndAnswer(
      selector, date == StandIns::current().answerTo("dateWithTimeIntervalSince1970:") ? "that" : "nil");
}

objc::Id dateWithSeconds(objc::Id, objc::Sel selector, double seconds) {
  return recordAndAnswer(selector, fmt::format("{}", seconds));
}

Class formatterClass() {
  static const Class made = StandInClass("StandInDateFormatter")
                                .method("setLocale:", "v@:@", setLocale)
                                .method("setTimeZone:", "v@:@", setTimeZone)
                                .method("setDateFormat:", "v@:@", setDateFormat)
                                .method("stringFromDate:", "@@:@", stringFromDate)
                                .registerClass();
  return made;
}

Class localeClass() {
  static const Class made = StandInClass("StandInLocale")
                                .classMethod("autoupdatingCurrentLocale", "@@:", formatterWithoutArguments)
                                .registerClass();
  return made;
}

Class timeZoneClass() {
  static const Class made = StandInClass("StandInTimeZone")
                                .classMethod("localTimeZone", "@@:", formatterWithoutArguments)
                                .registerClass();
  return made;
}

Class dateClass() {
  static const Class made = StandInClass("StandInDate")
                                .classMethod("dateWithTimeIntervalSince1970:", "@@:d", dateWithSeconds)
                                .registerClass();
  return made;
}

class MacDateFormatter : public testing::Test {
 protected:
  MacDateFormatter() {
    standIns_.answer("autoupdatingCurrentLocale", instanceOf(localeClass()));
    standIns_.answer("localTimeZone", instanceOf(timeZoneClass()));
    standIns_.answer("dateWithTimeIntervalSince1970:", instanceOf(dateClass()));
  }

  const Date moment_{std::chrono::milliseconds(1500)};
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride formatter_{"NSDateFormatter", formatterClass()};
  const objc::ClassOverride locale_{"NSLocale", localeClass()};
  const objc::ClassOverride timeZone_{"NSTimeZone", timeZoneClass()};
  const objc::ClassOverride date_{"NSDate", dateClass()};
};

TEST_F(MacDateFormatter, FollowsTheUsersLocaleAndTimeZone) {
  const FoundationDateFormatter formatter("yyyy");

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("autoupdatingCurrentLocale", "localTimeZone", "setLocale: that",
                          "setTimeZone: that", "setDateFormat: yyyy"));
}

TEST_F(MacDateFormatter, FormatsAMomentOnAnyThread) {
  standIns_.answer("stringFromDate:", objc::string("1970"));
  const FoundationDateFormatter formatter("yyyy");
  std::string text;

  std::thread([&] {
    const cocoa::ThreadPoolScope pool;
    text = formatter.stringFromDate(moment_);
  }).join();

  EXPECT_EQ(text, "1970");
  EXPECT_EQ(standIns_.messages().at(5), "dateWithTimeIntervalSince1970: 1.5");
  EXPECT_EQ(standIns_.messages().at(6), "stringFromDate: that");
}

TEST_F(MacDateFormatter, IsLetGoWithNothingElse) {
  const int countBefore = standIns_.liveCount();
  {
    const FoundationDateFormatter formatter("yyyy");
    formatter.stringFromDate(moment_);
    EXPECT_EQ(standIns_.liveCount(), countBefore + 1);
  }

  EXPECT_EQ(standIns_.liveCount(), countBefore);
}

TEST_F(MacDateFormatter, WritesNothingWhereThePlatformDoes) {
  EXPECT_EQ(FoundationDateFormatter("yyyy").stringFromDate(moment_), "");
}

TEST_F(MacDateFormatter, WhatIsRaisedWhileItIsMadeEndsOnTheConsole) {
  const StandardErrorCapture console;
  standIns_.raise();

  const FoundationDateFormatter formatter("yyyy");

  EXPECT_EQ(console.text(), "making a date formatter: raised by a stand-in\n");
}

TEST_F(MacDateFormatter, WhatIsRaisedWhileItFormatsEndsOnTheConsole) {
  const FoundationDateFormatter formatter("yyyy");
  const StandardErrorCapture console;
  standIns_.raise();

  EXPECT_EQ(formatter.stringFromDate(moment_), "");
  EXPECT_EQ(console.text(), "formatting a date: raised by a stand-in\n");
}

}  // namespace
}  // namespace karno::platform::trial
