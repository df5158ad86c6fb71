#include "platform/macos/appkit/appkit_applications.h"

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

objc::Id applicationsWithIdentifier(objc::Id, objc::Sel selector, objc::Id identifier) {
  return recordAndAnswer(selector, shown(identifier));
}

objc::Id bundleIdentifier(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

int processIdentifier(objc::Id, objc::Sel) { return 4711; }

objc::Id bundleURL(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

objc::Id withoutArguments(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

Class workspaceClass() {
  static const Class made = StandInClass("StandInApplicationList")
                                .classMethod("sharedWorkspace", "@@:", withoutArguments)
                                .method("runningApplications", "@@:", withoutArguments)
                                .registerClass();
  return made;
}

Class applicationClass() {
  static const Class made =
      StandInClass("StandInRunningApplication")
          .classMethod("runningApplicationsWithBundleIdentifier:", "@@:@", applicationsWithIdentifier)
          .method("bundleIdentifier", "@@:", bundleIdentifier)
          .method("processIdentifier", "i@:", processIdentifier)
          .method("bundleURL", "@@:", bundleURL)
          .registerClass();
  return made;
}

objc::Object arrayOf(const std::vector<objc::Object>& objects) {
  objc::Object array = objc::make("NSMutableArray");
  for (const objc::Object& object : objects) objc::send<void>(array, "addObject:", object);
  return array;
}

class MacRunningApplications : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSRunningApplication", applicationClass()};
};

TEST_F(MacRunningApplications, AreAskedForByIdentifierFromAnyThread) {
  standIns_.answer("runningApplicationsWithBundleIdentifier:",
                   arrayOf({instanceOf(applicationClass()), instanceOf(applicationClass())}));
  standIns_.answer("bundleIdentifier", objc::string("it.vantul.Karno"));
  std::vector<RunningApplication> found;

  std::thread([&found] { found = runningApplicationsOfAppKit("it.vantul.Karno"); }).join();

  EXPECT_THAT(standIns_.messages(), ElementsAre("runningApplicationsWithBundleIdentifier: it.vantul.Karno",
                                                "bundleIdentifier", "bundleIdentifier"));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found.back().processIdentifier, 4711);
  EXPECT_EQ(found.back().bundleIdentifier, "it.vantul.Karno");
}

TEST_F(MacRunningApplications, MayBeNone) {
  standIns_.answer("runningApplicationsWithBundleIdentifier:", arrayOf({}));

  EXPECT_THAT(runningApplicationsOfAppKit("it.vantul.Karno"), IsEmpty());
}

TEST_F(MacRunningApplications, MayHaveNoIdentifier) {
  standIns_.answer("runningApplicationsWithBundleIdentifier:", arrayOf({instanceOf(applicationClass())}));

  const auto found = runningApplicationsOfAppKit("it.vantul.Karno");

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().bundleIdentifier, std::nullopt);
}

TEST_F(MacRunningApplications, AreNoneWithoutAnAnswer) {
  EXPECT_THAT(runningApplicationsOfAppKit("it.vantul.Karno"), IsEmpty());
}

TEST_F(MacRunningApplications, WhatThePlatformRaisesEndsOnTheConsole) {
  const StandardErrorCapture console;
  standIns_.raise();

  const auto found = runningApplicationsOfAppKit("it.vantul.Karno");

  EXPECT_THAT(found, IsEmpty());
  EXPECT_EQ(console.text(), "list running applications: raised by a stand-in\n");
}

TEST_F(MacRunningApplications, AreKnownByTheirBundles) {
  const objc::ClassOverride workspace("NSWorkspace", workspaceClass());
  standIns_.answer("sharedWorkspace", instanceOf(workspaceClass()));
  standIns_.answer("runningApplications", arrayOf({instanceOf(applicationClass())}));
  const objc::Id url =
      objc::send(objc::classNamed("NSURL"), "fileURLWithPath:", objc::string("/Applications/Karno.app"));
  standIns_.answer("bundleURL", objc::Object::retaining(url));

  EXPECT_THAT(bundlesOfRunningApplicationsOfAppKit(), ElementsAre("/Applications/Karno.app"));
}

TEST_F(MacRunningApplications, GiveNothingBackThatTheyWereOnlyLent) {
  const objc::ClassOverride workspace("NSWorkspace", workspaceClass());
  standIns_.answer("sharedWorkspace", instanceOf(workspaceClass()));
  standIns_.answer("runningApplications", arrayOf({instanceOf(applicationClass())}));
  standIns_.answer("runningApplicationsWithBundleIdentifier:", arrayOf({instanceOf(applicationClass())}));

  runningApplicationsOfAppKit("it.vantul.Karno");
  bundlesOfRunningApplicationsOfAppKit();

  EXPECT_EQ(standIns_.liveCount(), 3);
  standIns_.answer("sharedWorkspace", objc::Object());
  standIns_.answer("runningApplications", objc::Object());
  standIns_.answer("runningApplicationsWithBundleIdentifier:", objc::Object());
  EXPECT_EQ(standIns_.liveCount(), 0);
}

TEST_F(MacRunningApplications, WhatTheWorkspaceRaisesEndsOnTheConsole) {
  const StandardErrorCapture console;
  const objc::ClassOverride workspace("NSWorkspace", workspaceClass());
  standIns_.raise();

  EXPECT_THAT(bundlesOfRunningApplicationsOfAppKit(), IsEmpty());
  EXPECT_EQ(console.text(), "list running applications: raised by a stand-in\n");
}

TEST_F(MacRunningApplications, HaveNoBundlesWithoutAnAnswer) {
  const objc::ClassOverride workspace("NSWorkspace", workspaceClass());
  EXPECT_THAT(bundlesOfRunningApplicationsOfAppKit(), IsEmpty());

  standIns_.answer("sharedWorkspace", instanceOf(workspaceClass()));
  EXPECT_THAT(bundlesOfRunningApplicationsOfAppKit(), IsEmpty());
}

TEST_F(MacRunningApplications, MayHaveNoBundle) {
  const objc::ClassOverride workspace("NSWorkspace", workspaceClass());
  standIns_.answer("sharedWorkspace", instanceOf(workspaceClass()));
  standIns_.answer("runningApplications", arrayOf({instanceOf(applicationClass())}));

  EXPECT_THAT(bundlesOfRunningApplicationsOfAppKit(), IsEmpty());
}

}  // namespace
}  // namespace karno::platform::trial
