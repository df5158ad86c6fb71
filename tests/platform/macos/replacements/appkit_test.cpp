#include "platform/cocoa/application_setup.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <objc/runtime.h>

#include <algorithm>
#include <array>

#include "elements_are.h"
#include "platform/cocoa/application.h"
#include "platform/cocoa/running_applications.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"
#include "platform/cocoa/windows/application_icon.h"
#include "platform/cocoa/windows/redrawing.h"
#include "platform/macos/appkit/workspace.h"
#include "stand_in.h"

// NSApplicationMain() to the source under test, as AppKit declares it.
extern "C" int karno_stand_in_application_main(int argc, const char** argv);

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using ::testing::Contains;
using ::testing::IsEmpty;

objc::Id withoutArguments(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }
objc::Id withOne(objc::Id, objc::Sel selector, objc::Id first) {
  return recordAndAnswer(selector, shown(first));
}

objc::Boolean selectFile(objc::Id, objc::Sel selector, objc::Id path, objc::Id root) {
  recordAndAnswer(selector, shown(path) + " " + shown(root));
  return 1;
}

int processIdentifier(objc::Id, objc::Sel) { return 4711; }

void activate(objc::Id, objc::Sel selector) { recordAndAnswer(selector); }
void withObject(objc::Id, objc::Sel selector, objc::Id object) {
  recordAndAnswer(selector, object_getClassName(object));
}
objc::Id withProcess(objc::Id, objc::Sel selector, int process) {
  return recordAndAnswer(selector, std::to_string(process));
}
objc::Boolean withOptions(objc::Id, objc::Sel selector, objc::UInteger options) {
  recordAndAnswer(selector, std::to_string(options));
  return 1;
}
void withTruth(objc::Id, objc::Sel selector, objc::Boolean truth) {
  recordAndAnswer(selector, std::to_string(truth));
}
objc::Id initMenu(objc::Id self, objc::Sel, objc::Id) { return self; }
objc::Id initItem(objc::Id self, objc::Sel, objc::Id title, objc::Sel action, objc::Id key) {
  recordAndAnswer("item", fmt::format("{}, {}, {}", shown(title),
                                      action == nullptr ? "" : sel_getName(action), shown(key)));
  return self;
}

StandInClass desktopApplication(const char* name) {
  return StandInClass(name)
      .classMethod("sharedApplication", "@@:", withoutArguments)
      .method("applicationIconImage", "@@:", withoutArguments)
      .method("setMainMenu:", "v@:@", withObject)
      .method("activateIgnoringOtherApps:", "v@:C", withTruth);
}

Class applicationClass() {
  static const Class made = desktopApplication("StandInDesktopApplication").registerClass();
  return made;
}

// As macOS 14 has it.
Class newApplicationClass() {
  static const Class made = desktopApplication("StandInNewDesktopApplication")
                                .method("activate", "v@:", activate)
                                .method("yieldActivationToApplication:", "v@:@", withObject)
                                .registerClass();
  return made;
}

Class menuClass() {
  static const Class made = StandInClass("StandInMenu")
                                .method("initWithTitle:", "@@:@", initMenu)
                                .method("addItem:", "v@:@", withObject)
                                .registerClass();
  return made;
}

Class itemClass() {
  static const Class made = StandInClass("StandInMenuItem")
                                .method("initWithTitle:action:keyEquivalent:", "@@:@:@", initItem)
                                .method("setSubmenu:", "v@:@", withObject)
                                .registerClass();
  return made;
}

Class workspaceClass() {
  static const Class made = StandInClass("StandInDesktopWorkspace")
                                .classMethod("sharedWorkspace", "@@:", withoutArguments)
                                .method("runningApplications", "@@:", withoutArguments)
                                .method("selectFile:inFileViewerRootedAtPath:", "C@:@@", selectFile)
                                .registerClass();
  return made;
}

Class runningClass() {
  static const Class made = StandInClass("StandInDesktopRunningApplication")
                                .classMethod("runningApplicationsWithBundleIdentifier:", "@@:@", withOne)
                                .method("bundleIdentifier", "@@:", withoutArguments)
                                .method("bundleURL", "@@:", withoutArguments)
                                .method("processIdentifier", "i@:", processIdentifier)
                                .classMethod("runningApplicationWithProcessIdentifier:", "@@:i", withProcess)
                                .method("activateWithOptions:", "C@:Q", withOptions)
                                .registerClass();
  return made;
}

objc::Object arrayOf(const objc::Object& object) {
  objc::Object array = objc::make("NSMutableArray");
  objc::send<void>(array, "addObject:", object);
  return array;
}

class MacDesktop : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride application_{"NSApplication", applicationClass()};
  const objc::ClassOverride workspace_{"NSWorkspace", workspaceClass()};
  const objc::ClassOverride running_{"NSRunningApplication", runningClass()};
};

TEST_F(MacDesktop, RunsTheApplicationWithTheProgramsArguments) {
  std::string program = "Karno";
  std::string argument = "-verbose";
  std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
  standIns_.answer("application main", objc::string("7"));

  const int status = cocoa::runApplication(2, arguments.data());

  EXPECT_EQ(status, 7);
  EXPECT_THAT(standIns_.messages(), ElementsAre("application main 2: Karno -verbose"));
}

TEST_F(MacDesktop, GivesTheApplicationItsMenusBeforeItRuns) {
  const objc::ClassOverride menu{"NSMenu", menuClass()};
  const objc::ClassOverride item{"NSMenuItem", itemClass()};
  standIns_.answer("sharedApplication", instanceOf(applicationClass()));

  cocoa::prepareForApplication();
  cocoa::prepareApplication();

  const std::vector<std::string>& told = standIns_.messages();
  EXPECT_THAT(told, Contains("item Quit Karno, terminate:, q"));
  EXPECT_EQ(std::ranges::count(told, "setSubmenu: StandInMenu"), 3);
  EXPECT_EQ(told.back(), "setMainMenu: StandInMenu");
}

TEST_F(MacDesktop, ComesToTheFrontInTheWayOfItsSystem) {
  standIns_.answer("sharedApplication", instanceOf(applicationClass()));
  cocoa::CocoaApplication().activateIgnoringOtherApps();
  standIns_.answer("sharedApplication", instanceOf(newApplicationClass()));
  cocoa::CocoaApplication().activateIgnoringOtherApps();

  EXPECT_THAT(standIns_.messages(), ElementsAre("sharedApplication", "activateIgnoringOtherApps: 1",
                                                "sharedApplication", "activate"));
}

TEST_F(MacDesktop, BringsAnotherApplicationToTheFront) {
  standIns_.answer("sharedApplication", instanceOf(applicationClass()));
  standIns_.answer("runningApplicationWithProcessIdentifier:", instanceOf(runningClass()));

  MacWorkspace().activateApplication(4711);

  EXPECT_THAT(standIns_.messages(), ElementsAre("runningApplicationWithProcessIdentifier: 4711",
                                                "sharedApplication", "activateWithOptions: 3"));
}

TEST_F(MacDesktop, MakesWayForTheOtherApplicationWhereItMust) {
  standIns_.answer("sharedApplication", instanceOf(newApplicationClass()));
  standIns_.answer("runningApplicationWithProcessIdentifier:", instanceOf(runningClass()));

  MacWorkspace().activateApplication(4711);

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("runningApplicationWithProcessIdentifier: 4711", "sharedApplication",
                          "yieldActivationToApplication: StandInDesktopRunningApplication",
                          "activateWithOptions: 3"));
}

TEST_F(MacDesktop, LeavesAnApplicationThatHasGoneAlone) {
  MacWorkspace().activateApplication(4711);

  EXPECT_THAT(standIns_.messages(), ElementsAre("runningApplicationWithProcessIdentifier: 4711"));
}

TEST_F(MacDesktop, TellsTheIconOfTheApplication) {
  const objc::Object icon = objc::string("icon");
  standIns_.answer("sharedApplication", instanceOf(applicationClass()));
  standIns_.answer("applicationIconImage", icon);

  EXPECT_EQ(cocoa::applicationIcon(), icon.get());
  EXPECT_THAT(standIns_.messages(), ElementsAre("sharedApplication", "applicationIconImage"));
}

TEST_F(MacDesktop, DrawsOnceOnly) {
  cocoa::drawAgain([] { FAIL() << "a window keeps what was drawn here"; });

  EXPECT_THAT(standIns_.messages(), IsEmpty());
}

TEST_F(MacDesktop, HasNoIconWithoutAnApplication) { EXPECT_EQ(cocoa::applicationIcon(), nullptr); }

TEST_F(MacDesktop, ShowsFilesInTheWorkspace) {
  standIns_.answer("sharedWorkspace", instanceOf(workspaceClass()));

  MacWorkspace().selectFile("/Users/me/log.txt", "");

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("sharedWorkspace", "selectFile:inFileViewerRootedAtPath: /Users/me/log.txt "));
}

TEST_F(MacDesktop, WhatTheWorkspaceRaisesEndsOnTheConsole) {
  standIns_.raise();

  MacWorkspace().selectFile("/Users/me/log.txt", "");

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("sharedWorkspace", "log %@, select a file: raised by a stand-in"));
}

TEST_F(MacDesktop, AsksAppKitForRunningApplications) {
  standIns_.answer("runningApplicationsWithBundleIdentifier:", arrayOf(instanceOf(runningClass())));
  standIns_.answer("bundleIdentifier", objc::string("it.vantul.Karno"));

  const auto found = MacWorkspace().runningApplications("it.vantul.Karno");

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().processIdentifier, 4711);
  EXPECT_EQ(found.front().bundleIdentifier, "it.vantul.Karno");
}

TEST_F(MacDesktop, AsksAppKitForTheirBundles) {
  standIns_.answer("sharedWorkspace", instanceOf(workspaceClass()));
  standIns_.answer("runningApplications", arrayOf(instanceOf(runningClass())));
  const objc::Id url =
      objc::send(objc::classNamed("NSURL"), "fileURLWithPath:", objc::string("/Applications/Karno.app"));
  standIns_.answer("bundleURL", objc::Object::retaining(url));

  EXPECT_THAT(MacWorkspace().bundlePathsOfRunningApplications(), ElementsAre("/Applications/Karno.app"));
}

}  // namespace
}  // namespace karno::platform::trial

int karno_stand_in_application_main(int argc, const char** argv) {
  std::string line = fmt::format("{}:", argc);
  for (; *argv != nullptr; ++argv) line += fmt::format(" {}", *argv);
  return std::stoi(
      karno::platform::objc::text(karno::platform::trial::recordAndAnswer("application main", line)));
}
