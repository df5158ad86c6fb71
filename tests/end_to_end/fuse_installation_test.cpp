#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::SizeIs;

constexpr std::chrono::seconds kLimit{20};
constexpr std::chrono::seconds kTimeForNothing{5};

Messages untilNeeded(const Messages& why) {
  return joined(
      {openingMessages(), fuseChosenMessages(), fuseSystemMessages("arm64", "14.5"), why, {kFuseNeeded}});
}

const Messages kMissing = {kFuseMissing};
const Messages kTooOld = {"INFO Fuse[SYSTEM] Fuse Version: '4.4.0'", kFuseUnmet};

Messages fromInstalledToTheEnd() {
  return joined(
      {{"INFO FuseRequirements: System requirements have been met", "INFO Startup[FUSE] Fuse is installed"},
       launchMessages("Karno(Fuse).app"),
       quittingMessages(),
       {kTerminating}});
}

// A machine whose user is to have the FUSE build, with that macFUSE.
class FuseInstallation : public ::testing::Test {
 protected:
  void startWithFuse(const std::string& version) {
    ASSERT_EQ(machine_.make({"--fuse", version}).status, 0);
    machine_.start();
    const auto prompt = findWindow(machine_, kLauncherTitle);
    ASSERT_TRUE(prompt) << machine_.consoleText();
    prompt_ = *prompt;
  }

  // The alert that comes two seconds after the web site.
  void dismissAlert() {
    const auto alert = findNextWindow(machine_, kLauncherTitle, prompt_);
    ASSERT_TRUE(alert) << machine_.consoleText();
    pressKey(machine_, *alert, "Return");
    ASSERT_TRUE(machine_.waitUntil([&] { return !hasWindow(); }, kLimit)) << "the alert stays";
  }

  bool hasWindow() const { return findWindow(machine_, kLauncherTitle, std::chrono::seconds(0)).has_value(); }

  std::string opened() const {
    std::ostringstream text;
    text << std::ifstream(machine_.root() / "var/log/open.log").rdbuf();
    return text.str();
  }

  auto numberOf(const std::string& message) const {
    const Messages messages = machine_.log();
    return std::count(messages.begin(), messages.end(), message);
  }

  void quitWhenStarted() {
    ASSERT_TRUE(machine_.waitForMessage(kStarted)) << machine_.consoleText();
    machine_.in({"karnoctl", "post", "user-selected-quit"});
    ASSERT_EQ(machine_.waitForEnd(), 0);
  }

  // The log with the lines of repeated polls told once.
  Messages logWithoutRepeatedLines() const {
    Messages messages = machine_.log();
    messages.erase(std::unique(messages.begin(), messages.end()), messages.end());
    return messages;
  }

  Machine machine_{builtTools(), {"--admin", "USE_FILE_PROVIDER=NO"}};
  WindowOnScreen prompt_;
};

TEST_F(FuseInstallation, LeadsFromThePromptOverTheWebSiteToTheRunningClient) {
  startWithFuse("none");
  pressKey(machine_, prompt_, "Return");
  dismissAlert();
  EXPECT_EQ(opened(), "open https://macfuse.github.io \n");
  ASSERT_TRUE(machine_.waitForMessage(kWaitingForFuse));

  ASSERT_EQ(machine_.make({"--fuse", "4.4.1"}).status, 0);

  quitWhenStarted();
  EXPECT_THAT(
      machine_.log(),
      ElementsAreArray(joined({untilNeeded(kMissing), fuseDownloadMessages(), fromInstalledToTheEnd()})));
}

TEST_F(FuseInstallation, NeedNotWaitForTheUserToDismissTheAlert) {
  startWithFuse("none");
  pressKey(machine_, prompt_, "Return");
  const auto alert = findNextWindow(machine_, kLauncherTitle, prompt_);
  ASSERT_TRUE(alert) << machine_.consoleText();

  ASSERT_EQ(machine_.make({"--fuse", "4.4.1"}).status, 0);

  EXPECT_TRUE(findWindow(machine_, "Karno(Fuse).app")) << machine_.consoleText();
  EXPECT_TRUE(findNextWindow(machine_, kLauncherTitle, prompt_, std::chrono::seconds(0)));
}

TEST_F(FuseInstallation, WaitsForAnUpgradeThatIsRecentEnough) {
  startWithFuse("4.4.0");
  pressKey(machine_, prompt_, "Return");
  dismissAlert();
  ASSERT_TRUE(machine_.waitUntil([&] { return numberOf(kFuseUnmet) >= 3; }, kLimit))
      << machine_.consoleText();

  ASSERT_EQ(machine_.make({"--fuse", "4.4.1"}).status, 0);

  quitWhenStarted();
  EXPECT_THAT(logWithoutRepeatedLines(),
              ElementsAreArray(joined(
                  {untilNeeded(kTooOld), fuseDownloadMessages(), {kFuseUnmet}, fromInstalledToTheEnd()})));
}

TEST_F(FuseInstallation, EndsWithTheLauncherWhenTheUserCancels) {
  startWithFuse("none");

  pressKey(machine_, prompt_, "Escape");

  EXPECT_EQ(machine_.waitForEnd(), 0);
  EXPECT_THAT(machine_.log(), ElementsAreArray(joined({untilNeeded(kMissing), fuseCancelledMessages()})));
  EXPECT_EQ(opened(), "");
}

TEST_F(FuseInstallation, IsLeftAloneWhenTheUserClosesThePrompt) {
  startWithFuse("none");
  closeByKeys(machine_, prompt_);
  ASSERT_TRUE(machine_.waitUntil([&] { return !hasWindow(); }, kLimit)) << "the prompt stays";

  EXPECT_FALSE(machine_.waitForEnd(kTimeForNothing));

  EXPECT_THAT(machine_.log(), ElementsAreArray(untilNeeded(kMissing)));
  EXPECT_THAT(machine_.processesOf(machine_.bundle() / "Contents/MacOS/Karno"), SizeIs(1));
  EXPECT_EQ(opened(), "");
  machine_.in({"karnoctl", "post", "user-selected-quit"});
  EXPECT_EQ(machine_.waitForEnd(), 0);
}

TEST_F(FuseInstallation, GoesOnForAsLongAsItTakes) {
  startWithFuse("none");
  pressKey(machine_, prompt_, "Return");
  dismissAlert();

  EXPECT_FALSE(machine_.waitForEnd(kTimeForNothing));

  EXPECT_THAT(machine_.log(), ElementsAreArray(joined({untilNeeded(kMissing), fuseDownloadMessages()})));
}

}  // namespace
}  // namespace karno::test
