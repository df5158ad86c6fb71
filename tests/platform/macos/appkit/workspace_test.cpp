#include "platform/macos/appkit/workspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;
using ::testing::IsEmpty;

objc::Id sharedWorkspace(objc::Id, objc::Sel selector) { return answer(selector); }

objc::Boolean openURL(objc::Id, objc::Sel selector, objc::Id url) {
  recordAndAnswer(selector, shown(objc::send(url, "absoluteString")));
  return 1;
}

Class openingWorkspaceClass() {
  static const Class made = StandInClass("StandInWorkspace")
                                .classMethod("sharedWorkspace", "@@:", sharedWorkspace)
                                .method("openURL:", "C@:@", openURL)
                                .registerClass();
  return made;
}

class MacWorkspaceTest : public testing::Test {
 protected:
  MacWorkspaceTest() { standIns_.answer("sharedWorkspace", instanceOf(openingWorkspaceClass())); }

  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSWorkspace", openingWorkspaceClass()};
  MacWorkspace workspace_;
};

TEST_F(MacWorkspaceTest, HandsAUrlToThePlatformFromAnyThread) {
  std::thread([this] { workspace_.openURL("https://example.org/a?b=c#d"); }).join();

  EXPECT_THAT(standIns_.messages(), ElementsAre("openURL: https://example.org/a?b=c#d"));
}

TEST_F(MacWorkspaceTest, IgnoresWhatIsNoUrlAndSaysSo) {
  const StandardErrorCapture console;

  workspace_.openURL("https://example.org/a b");

  EXPECT_THAT(standIns_.messages(), IsEmpty());
  EXPECT_EQ(console.text(), "Workspace: this is no URL and cannot be opened: https://example.org/a b\n");
}

TEST_F(MacWorkspaceTest, OpensNothingWhereThereIsNone) {
  const StandardErrorCapture console;
  standIns_.answer("sharedWorkspace", objc::Object());

  workspace_.openURL("https://example.org");

  EXPECT_THAT(standIns_.messages(), IsEmpty());
  EXPECT_EQ(console.text(), "");
}

TEST_F(MacWorkspaceTest, GivesNothingBackThatItWasOnlyLent) {
  workspace_.openURL("https://example.org");

  EXPECT_EQ(standIns_.liveCount(), 1);
  standIns_.answer("sharedWorkspace", objc::Object());
  EXPECT_EQ(standIns_.liveCount(), 0);
}

TEST_F(MacWorkspaceTest, WhatThePlatformRaisesEndsOnTheConsole) {
  const StandardErrorCapture console;
  standIns_.raise();

  workspace_.openURL("https://example.org");

  EXPECT_EQ(console.text(), "open a URL: raised by a stand-in\n");
}

}  // namespace
}  // namespace karno::platform::trial
