#include "platform/macos/appkit/apple_scripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;

objc::Id initWithSource(objc::Id self, objc::Sel selector, objc::Id source) {
  recordAndAnswer(selector, shown(source));
  return self;
}

objc::Id executeScript(objc::Id, objc::Sel selector, objc::Id* error) {
  const objc::Id descriptor = recordAndAnswer(selector);
  *error = StandIns::current().answerTo(descriptor == nullptr ? "error" : "error left over");
  return descriptor;
}

Class scriptClass() {
  static const Class made = StandInClass("StandInAppleScript")
                                .method("initWithSource:", "@@:@", initWithSource)
                                .method("executeAndReturnError:", "@@:^@", executeScript)
                                .registerClass();
  return made;
}

class MacAppleScripts : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSAppleScript", scriptClass()};
  FoundationAppleScripts scripts_;
};

TEST_F(MacAppleScripts, AreRunAndLetGo) {
  standIns_.answer("executeAndReturnError:", objc::string("descriptor"));

  EXPECT_EQ(scripts_.execute("beep 2"), std::nullopt);
  EXPECT_THAT(standIns_.messages(), ElementsAre("initWithSource: beep 2", "executeAndReturnError:"));
  EXPECT_EQ(standIns_.liveCount(), 0);
}

TEST_F(MacAppleScripts, TellTheErrorInformation) {
  standIns_.answer("error", objc::string("{NSAppleScriptErrorNumber = -1743;}"));

  EXPECT_EQ(scripts_.execute("beep"), "{NSAppleScriptErrorNumber = -1743;}");
}

TEST_F(MacAppleScripts, TellThatThereIsNoErrorInformation) { EXPECT_EQ(scripts_.execute("beep"), "(null)"); }

TEST_F(MacAppleScripts, TakeWhatIsRaisedForAnError) {
  standIns_.raise();

  EXPECT_EQ(scripts_.execute("beep"), "run a script: raised by a stand-in");
}

TEST_F(MacAppleScripts, AreLetGoWhenTheyFail) {
  standIns_.answer("error", objc::string("{NSAppleScriptErrorNumber = -1743;}"));

  scripts_.execute("beep");

  EXPECT_EQ(standIns_.liveCount(), 0);
}

TEST_F(MacAppleScripts, HaveRunWhateverIsLeftInTheErrorInformation) {
  standIns_.answer("executeAndReturnError:", objc::string("descriptor"));
  standIns_.answer("error left over", objc::string("{NSAppleScriptErrorNumber = -1743;}"));

  EXPECT_EQ(scripts_.execute("beep"), std::nullopt);
}

objc::Id refuseSource(objc::Id self, objc::Sel selector, objc::Id source) {
  recordAndAnswer(selector, shown(source));
  objc::send<void>(self, "release");  // what an initialiser that answers nil does
  return nullptr;
}

TEST_F(MacAppleScripts, AreNoneOfATextThatThePlatformRefuses) {
  static const Class refusing = StandInClass("StandInRefusedAppleScript")
                                    .method("initWithSource:", "@@:@", refuseSource)
                                    .registerClass();
  const objc::ClassOverride override("NSAppleScript", refusing);

  EXPECT_EQ(scripts_.execute("beep"), "(null)");
  EXPECT_THAT(standIns_.messages(), ElementsAre("initWithSource: beep"));
  EXPECT_EQ(standIns_.liveCount(), 0);
}

}  // namespace
}  // namespace karno::platform::trial
