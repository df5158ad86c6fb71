#include "platform/macos/files/standard_folders.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"

// NSSearchPathForDirectoriesInDomains() to the source under test, as Foundation declares it.
extern "C" karno::platform::objc::Id karno_stand_in_search_path(karno::platform::objc::UInteger directory,
                                                                karno::platform::objc::UInteger domains,
                                                                karno::platform::objc::Boolean expandTilde);

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;
using ::testing::IsEmpty;

class MacStandardFolders : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_{};
  StandIns standIns_;
  const FoundationStandardFolders folders_{};
};

TEST_F(MacStandardFolders, AreThoseOfAllDomainsInThePlatformsOrder) {
  standIns_.answer("search path",
                   cocoa::objectOf(Value(Value::Array{"/Users/me/Applications", "/Applications"})));

  EXPECT_THAT(folders_.inAllDomains(StandardFolder::Applications),
              ElementsAre("/Users/me/Applications", "/Applications"));
  folders_.inAllDomains(StandardFolder::Downloads);
  EXPECT_THAT(standIns_.messages(), ElementsAre("search path 1 65535 1", "search path 15 65535 1"));
}

TEST_F(MacStandardFolders, KnowTheApplicationsOfThisMachine) {
  standIns_.answer("search path", cocoa::objectOf(Value(Value::Array{"/Programme", "/Applications"})));

  EXPECT_EQ(folders_.localApplications(), "/Programme");
  EXPECT_THAT(standIns_.messages(), ElementsAre("search path 1 2 1"));
}

TEST_F(MacStandardFolders, AreTheUsualOneWithoutAnAnswer) {
  EXPECT_THAT(folders_.inAllDomains(StandardFolder::Downloads), IsEmpty());
  EXPECT_EQ(folders_.localApplications(), "/Applications");
}

TEST_F(MacStandardFolders, MayBeAskedForOnAnyThread) {
  standIns_.answer("search path", cocoa::objectOf(Value(Value::Array{"/Programme"})));
  std::string folder;

  std::thread([&] { folder = folders_.localApplications(); }).join();

  EXPECT_EQ(folder, "/Programme");
}

TEST_F(MacStandardFolders, WhatIsRaisedEndsOnTheConsole) {
  const StandardErrorCapture console{};
  standIns_.raise();

  EXPECT_EQ(folders_.localApplications(), "/Applications");
  EXPECT_EQ(console.text(), "search path: raised by a stand-in\n");
}

}  // namespace
}  // namespace karno::platform::trial

karno::platform::objc::Id karno_stand_in_search_path(karno::platform::objc::UInteger directory,
                                                     karno::platform::objc::UInteger domains,
                                                     karno::platform::objc::Boolean expandTilde) {
  return karno::platform::trial::recordAndAnswer("search path",
                                                 fmt::format("{} {} {}", directory, domains, expandTilde));
}
