#include "platform/macos/web/url_loading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;

objc::Id urlWithString(objc::Id, objc::Sel selector, objc::Id text) {
  return recordAndAnswer(selector, shown(text));
}

objc::Id fetch(objc::Id, objc::Sel selector, objc::Id url, objc::UInteger options, objc::Id* error) {
  const bool isTheOneMade = url == StandIns::current().answerTo("URLWithString:");
  *error = StandIns::current().answerTo("error");
  return recordAndAnswer(selector, std::to_string(options) + (isTheOneMade ? "" : " of another URL"));
}

objc::Id errorProperty(objc::Id, objc::Sel selector) { return answer(selector); }
objc::Integer codeOf(objc::Id, objc::Sel) { return -1009; }

Class loadedURLClass() {
  static const Class made =
      StandInClass("StandInFetchedURL").classMethod("URLWithString:", "@@:@", urlWithString).registerClass();
  return made;
}

Class dataClass() {
  static const Class made = StandInClass("StandInFetchedData")
                                .classMethod("dataWithContentsOfURL:options:error:", "@@:@Q^@", fetch)
                                .registerClass();
  return made;
}

Class loadingErrorClass() {
  static const Class made = StandInClass("StandInFetchError")
                                .method("domain", "@@:", errorProperty)
                                .method("code", "q@:", codeOf)
                                .method("localizedDescription", "@@:", errorProperty)
                                .method("userInfo", "@@:", errorProperty)
                                .registerClass();
  return made;
}

objc::Object dataOf(const std::string& bytes) {
  const void* const first = bytes.data();
  return objc::Object::retaining(
      objc::send(objc::classNamed("NSData"), "dataWithBytes:length:", first, objc::UInteger(bytes.size())));
}

class MacURLLoading : public testing::Test {
 protected:
  void answerWithURL() { standIns_.answer("URLWithString:", instanceOf(loadedURLClass())); }

  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::Object page_ = dataOf(std::string("the\0page", 8));
  const objc::Object nothing_ = dataOf("");
  const objc::ClassOverride url_{"NSURL", loadedURLClass()};
  const objc::ClassOverride data_{"NSData", dataClass()};
  FoundationURLLoading urlLoading_;
};

TEST_F(MacURLLoading, FetchesUncached) {
  answerWithURL();
  standIns_.answer("dataWithContentsOfURL:options:error:", page_);

  const auto contents = urlLoading_.contentsOfURL("https://localhost/page");

  ASSERT_TRUE(contents);
  EXPECT_EQ(contents.value(), std::string("the\0page", 8));
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("URLWithString: https://localhost/page", "dataWithContentsOfURL:options:error: 2"));
}

TEST_F(MacURLLoading, GivesAnEmptyPage) {
  answerWithURL();
  standIns_.answer("dataWithContentsOfURL:options:error:", nothing_);

  const auto contents = urlLoading_.contentsOfURL("https://localhost/empty");

  ASSERT_TRUE(contents);
  EXPECT_EQ(contents.value(), "");
}

TEST_F(MacURLLoading, PassesTheErrorOn) {
  answerWithURL();
  standIns_.answer("error", instanceOf(loadingErrorClass()));
  standIns_.answer("domain", objc::string("NSURLErrorDomain"));
  standIns_.answer("localizedDescription", objc::string("The Internet connection appears to be offline."));
  standIns_.answer(
      "userInfo",
      cocoa::objectOf(Value(Value::Dictionary{{"NSErrorFailingURLStringKey", "https://localhost"}})));

  const auto contents = urlLoading_.contentsOfURL("https://localhost/page");

  ASSERT_FALSE(contents);
  EXPECT_EQ(contents.error(),
            Error("NSURLErrorDomain", -1009,
                  {{"NSErrorFailingURLStringKey", "https://localhost"},
                   {"NSLocalizedDescription", "The Internet connection appears to be offline."}}));
}

TEST_F(MacURLLoading, TellsOfAFailureWithoutAReason) {
  answerWithURL();

  const auto contents = urlLoading_.contentsOfURL("https://localhost/page");

  ASSERT_FALSE(contents);
  EXPECT_EQ(contents.error(), Error("NSURLErrorDomain", -1, {{"NSLocalizedDescription", "unknown error"}}));
}

// Only the answer counts: a method may leave anything in the error when it succeeds.
TEST_F(MacURLLoading, GivesAPageWhateverIsLeftInTheError) {
  answerWithURL();
  standIns_.answer("dataWithContentsOfURL:options:error:", page_);
  standIns_.answer("error", instanceOf(loadingErrorClass()));

  EXPECT_TRUE(urlLoading_.contentsOfURL("https://localhost/page"));
}

TEST_F(MacURLLoading, PassesAnErrorOnThatSaysNothing) {
  answerWithURL();
  standIns_.answer("error", instanceOf(loadingErrorClass()));

  const auto contents = urlLoading_.contentsOfURL("https://localhost/page");

  ASSERT_FALSE(contents);
  EXPECT_EQ(contents.error(), Error("", -1009, {{"NSLocalizedDescription", ""}}));
}

TEST_F(MacURLLoading, GivesNothingBackThatItWasOnlyLent) {
  answerWithURL();
  standIns_.answer("error", instanceOf(loadingErrorClass()));

  static_cast<void>(urlLoading_.contentsOfURL("https://localhost/page"));

  EXPECT_EQ(standIns_.liveCount(), 2);
  standIns_.answer("URLWithString:", objc::Object());
  standIns_.answer("error", objc::Object());
  EXPECT_EQ(standIns_.liveCount(), 0);
}

TEST_F(MacURLLoading, RefusesATextThatIsNoURL) {
  const auto contents = urlLoading_.contentsOfURL("no URL");

  ASSERT_FALSE(contents);
  EXPECT_EQ(contents.error(), Error("NSURLErrorDomain", -1000, {{"NSLocalizedDescription", "bad URL"}}));
  EXPECT_THAT(standIns_.messages(), ElementsAre("URLWithString: no URL"));
}

TEST_F(MacURLLoading, TurnsARaisedExceptionIntoAnError) {
  standIns_.raise();

  const auto contents = urlLoading_.contentsOfURL("https://localhost/page");

  ASSERT_FALSE(contents);
  EXPECT_EQ(contents.error().localizedDescription(), "fetching a URL: raised by a stand-in");
}

}  // namespace
}  // namespace karno::platform::trial
