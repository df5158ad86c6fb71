#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "elements_are.h"
#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kFuseBuild = "Karno(Fuse).app";
constexpr const char* kFileProviderBuild = "Karno.app";

std::vector<int> launchersOf(const Machine& machine) {
  return machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
}

std::vector<int> clientsOf(const Machine& machine, const std::string& build) {
  const std::string name = build.substr(0, build.size() - std::string(".app").size());
  return machine.processesOf(machine.helper(build) / "Contents/MacOS" / name);
}

std::string lastOpened(const Machine& machine) {
  std::ifstream file(machine.root() / "var/log/open.log");
  std::string last;
  for (std::string line; std::getline(file, line);) last = line;
  return last;
}

// A start of the macFUSE build on the machine below.
Messages fuseMessages() {
  return joined({fuseSystemMessages("arm64", "14.5"), fuseMetMessages("4.4.1"), launchMessages(kFuseBuild)});
}

// What the launcher that goes away logs from the message on.
Messages wrapperHandingOver(const std::string& message, const std::string& bundleIdentifier,
                            const std::string& build) {
  return joined({{"INFO Notify[LISTEN] Received '" + message + "'"},
                 leavingMessages(bundleIdentifier),
                 {"INFO Startup[RESTART] Karno has quit - restarting wrapper (-launch " + build + ")",
                  "INFO AppDelegate[TERMINATE] Reason: Restart Wrapper", kTerminating}});
}

// A machine with macFUSE, so that both builds can run.
class WrapperRestart : public ::testing::Test {
 protected:
  // Starts the launcher with that build and presses the button of that message in the client's window, after
  // which the client leaves. Ends when the second launcher has the machine to itself.
  void startAndPress(const std::string& build, const std::string& message) {
    machine.start({"--", "-launch", build});
    const auto window = findWindow(machine, build);
    ASSERT_TRUE(window) << machine.consoleText();
    pressMessageButton(machine, *window, message);
    ASSERT_TRUE(machine.waitForMessages(2, kStarted)) << machine.consoleText();
    ASSERT_TRUE(machine.waitForMessage(kTerminating)) << machine.consoleText();
    ASSERT_TRUE(
        machine.waitUntil([&] { return launchersOf(machine).size() == 1; }, std::chrono::seconds(20)));
  }

  std::optional<int> quit() {
    machine.in({"karnoctl", "post", "user-selected-quit"});
    return machine.waitForEnd();
  }

  Machine machine{builtTools(), {"--fuse", "4.4.1"}};
};

TEST_F(WrapperRestart, BringsTheFuseBuild) {
  startAndPress(kFileProviderBuild, "restart-wrapper-with-fuse");

  EXPECT_THAT(clientsOf(machine, kFuseBuild), SizeIs(1));
  EXPECT_THAT(clientsOf(machine, kFileProviderBuild), IsEmpty());
  EXPECT_EQ(lastOpened(machine),
            "open -n " + machine.bundle().string() + " --args -launch Karno\\(Fuse\\).app ");
  EXPECT_EQ(quit(), 0);
  EXPECT_THAT(
      machine.logsByProcess(),
      ElementsAre(ElementsAreArray(joined(
                      {openingMessages(), fileProviderMessages(),
                       wrapperHandingOver("restart-wrapper-with-fuse", "it.vantul.Karno", kFuseBuild)})),
                  ElementsAreArray(joined(
                      {openingMessages("bash"), fuseMessages(), quittingMessages(), {kTerminating}}))));
}

TEST_F(WrapperRestart, BringsTheFileProviderBuild) {
  startAndPress(kFuseBuild, "restart-wrapper-with-file-provider");

  EXPECT_THAT(clientsOf(machine, kFileProviderBuild), SizeIs(1));
  EXPECT_THAT(clientsOf(machine, kFuseBuild), IsEmpty());
  EXPECT_EQ(quit(), 0);
  EXPECT_THAT(
      machine.logsByProcess(),
      ElementsAre(
          ElementsAreArray(joined({openingMessages(), fuseMessages(),
                                   wrapperHandingOver("restart-wrapper-with-file-provider",
                                                      "it.vantul.KarnoFuse", kFileProviderBuild)})),
          ElementsAreArray(joined(
              {openingMessages("bash"), fileProviderMessages(), quittingMessages(), {kTerminating}}))));
}

TEST_F(WrapperRestart, BringsTheSameBuildAgainWhenNoneIsNamed) {
  startAndPress(kFuseBuild, "restart-wrapper");

  EXPECT_THAT(clientsOf(machine, kFuseBuild), SizeIs(1));
  EXPECT_THAT(clientsOf(machine, kFileProviderBuild), IsEmpty());
  EXPECT_EQ(quit(), 0);
  EXPECT_THAT(
      machine.logsByProcess(),
      ElementsAre(ElementsAreArray(
                      joined({openingMessages(), fuseMessages(),
                              wrapperHandingOver("restart-wrapper", "it.vantul.KarnoFuse", kFuseBuild)})),
                  ElementsAreArray(joined(
                      {openingMessages("bash"), fuseMessages(), quittingMessages(), {kTerminating}}))));
}

TEST_F(WrapperRestart, FailsWhenTheClientStays) {
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  waitForClientWindow(machine);
  machine.in({"karnoctl", "post", "restart-wrapper"});
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Return");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.logsByProcess(),
              ElementsAre(ElementsAreArray(joined(
                  {openingMessages(),
                   {kFirstStartup},
                   fileProviderMessages(),
                   {"INFO Notify[LISTEN] Received 'restart-wrapper'"},
                   stayingMessages("it.vantul.Karno"),
                   {"*** ERROR *** Startup[RESTART] Failed to restart Wrapper - because Karno has not exited",
                    "*** ERROR *** Main: Failed to start Karno",
                    "INFO AppDelegate[TERMINATE] Reason: Failed to start Karno.app", kTerminating}}))));
}

}  // namespace
}  // namespace karno::test
