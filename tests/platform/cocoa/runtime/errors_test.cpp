#include "platform/cocoa/runtime/errors.h"

#include <gtest/gtest.h>

#include "../foundation_objects.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::trial {
namespace {

const Error kUnexplained("TestDomain", 0);

TEST(CocoaErrors, KeepDomainCodeAndExplanation) {
  const objc::AutoreleasePool pool;

  const Error read = cocoa::errorOf(explainedError("SomeDomain", -42, "It is föggy."), kUnexplained);

  EXPECT_EQ(read, Error("SomeDomain", -42, {{"NSLocalizedDescription", "It is föggy."}}));
}

TEST(CocoaErrors, ShowEveryPartOfTheUserInformationAsText) {
  const objc::AutoreleasePool pool;
  const objc::Object userInfo =
      cocoa::objectOf(Value(Value::Dictionary{{"NSLocalizedDescription", Value(std::string("No update."))},
                                              {"Reason", Value(std::int64_t{2})},
                                              {"Page", Value(std::string("https://localhost/"))}}));

  const Error read = cocoa::errorOf(error("SomeDomain", 1001, userInfo), kUnexplained);

  EXPECT_EQ(read.description(),
            "Error Domain=SomeDomain Code=1001 \"No update.\" UserInfo={NSLocalizedDescription=No update., "
            "Page=https://localhost/, Reason=2}");
}

TEST(CocoaErrors, TakeTheSentenceOfTheFrameworkWhereNoneWasGiven) {
  const objc::AutoreleasePool pool;

  const Error read = cocoa::errorOf(error("SomeDomain", 7), kUnexplained);

  EXPECT_EQ(read.domain(), "SomeDomain");
  EXPECT_EQ(read.code(), 7);
  EXPECT_NE(read.localizedDescription(), "");
}

TEST(CocoaErrors, AreWhatTheCallerSaysWhereThereIsNone) {
  EXPECT_EQ(cocoa::errorOf(nullptr, kUnexplained), kUnexplained);
}

}  // namespace
}  // namespace karno::platform::trial
