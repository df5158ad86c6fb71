#include "platform/macos/updater/sparkle_framework.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../sparkle_stand_ins.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;

class MacUpdaterFramework : public testing::Test {
 protected:
  objc::Object makeDelegate() {
    framework_.standIns().record("the delegate is made");
    return delegate_;
  }

  const objc::AutoreleasePool pool_;
  SparkleStandIns framework_;
  const objc::Object delegate_ = objc::string("the delegate");
};

// It brings the protocols that the delegate's class adopts when it is made.
TEST_F(MacUpdaterFramework, IsLoadedBeforeTheDelegateIsMade) {
  const auto objects = makeSparkleObjects([this] { return makeDelegate(); });

  ASSERT_TRUE(objects);
  EXPECT_EQ(framework_.delegate, delegate_.get());
  EXPECT_THAT(framework_.standIns().messages(),
              ElementsAre("bundleWithPath: /Applications/Karno.app/Contents/Frameworks/Sparkle.framework",
                          "loadAndReturnError:", "the delegate is made", "initWithHostBundle:delegate: main",
                          "initWithHostBundle:applicationBundle:userDriver:delegate: main main"));
}

TEST_F(MacUpdaterFramework, ThatIsMissingNeedsNoDelegate) {
  framework_.becomeMissing();

  EXPECT_FALSE(makeSparkleObjects([this] { return makeDelegate(); }));
  EXPECT_THAT(framework_.standIns().messages(),
              ElementsAre("bundleWithPath: /Applications/Karno.app/Contents/Frameworks/Sparkle.framework"));
}

}  // namespace
}  // namespace karno::platform::trial
