#include "platform/linux/gnustep/alerts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "../../cocoa/screen.h"
#include "../../support/temporary_folder.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

std::string launchedOnLinuxAndEnded(const std::string& between) {
  return "did finish launching\n" + between + "will terminate\n";
}

TEST(LinuxAlertsOnScreen, ReturnPressesTheFirstButton) {
  const CommandResult result = onScreen("alert/return");

  EXPECT_EQ(result.output, launchedOnLinuxAndEnded("answer 1000\n"));
  EXPECT_EQ(result.status, 0);
}

TEST(LinuxAlertsOnScreen, EscapePressesTheButtonThatWasGivenIt) {
  const CommandResult result = onScreen("alert/escape");

  EXPECT_EQ(result.output, launchedOnLinuxAndEnded("answer 1001\n"));
  EXPECT_EQ(result.status, 0);
}

TEST(LinuxAlertsOnScreen, ReturnPressesTheFirstButtonAlsoWhenNoKeysWereGiven) {
  EXPECT_EQ(onScreen("alert/default-keys").output, launchedOnLinuxAndEnded("answer 1000\n"));
}

TEST(LinuxAlertsOnScreen, TheThirdButtonAnswers1002) {
  EXPECT_EQ(onScreen("alert/three-buttons").output, launchedOnLinuxAndEnded("answer 1002\n"));
}

TEST(LinuxAlertsOnScreen, AnAlertWithoutButtonsGetsOneThatReturnPresses) {
  EXPECT_EQ(onScreen("alert/no-button").output, launchedOnLinuxAndEnded("answer 1000\n"));
}

TEST(LinuxAlertsOnScreen, ABlockOfTheMainQueueCanShowOne) {
  EXPECT_EQ(onScreen("alert/from-main-queue").output, launchedOnLinuxAndEnded("answer 1000\n"));
}

TEST(LinuxAlertsOnScreen, ATerminationSignalEndsTheProcessInOrderWhileOneIsUp) {
  const CommandResult result = onScreen("alert/signal");

  EXPECT_EQ(result.output, launchedOnLinuxAndEnded(""));
  EXPECT_EQ(result.status, 0);
}

TEST(LinuxAlertsOnScreen, EscapePressesTheSecondOfTwoButtonsWithoutKeys) {
  EXPECT_EQ(onScreen("alert/escape-without-keys").output, launchedOnLinuxAndEnded("answer 1001\n"));
}

TEST(LinuxAlertsOnScreen, TheTabulatorGoesToTheSecondButton) {
  EXPECT_EQ(onScreen("alert/tab-space").output, launchedOnLinuxAndEnded("answer 1001\n"));
}

TEST(LinuxAlertsOnScreen, TheirButtonsCanBeClicked) {
  EXPECT_EQ(onScreen("alert/click").output, launchedOnLinuxAndEnded("answer 1001\n"));
}

TEST(LinuxAlertsOnScreen, ClosingOneAnswersAsEscapeDoes) {
  EXPECT_EQ(onScreen("alert/close-button").output, launchedOnLinuxAndEnded("answer 1001\n"));
}

TEST(LinuxAlertsOnScreen, ClosingOneThatHasASingleButtonPressesIt) {
  EXPECT_EQ(onScreen("alert/close-button-of-one").output, launchedOnLinuxAndEnded("answer 1000\n"));
}

TEST(LinuxAlertsOnScreen, OneOnTopOfAnotherIsAnsweredFirst) {
  EXPECT_EQ(onScreen("alert/nested").output, launchedOnLinuxAndEnded("inner answer 1001\nanswer 1000\n"));
}

TEST(LinuxAlertsOnScreen, ShowTheirTextsUnderTheApplicationsName) {
  EXPECT_EQ(onScreen("alert/look").output, launchedOnLinuxAndEnded("Karno\n"
                                                                   "Whoops\n"
                                                                   "Something went wrong.\n"
                                                                   "\n"
                                                                   "Grüße \xF0\x9F\x98\x80\n"
                                                                   "Ja\n"
                                                                   "Nein\n"
                                                                   "\n"
                                                                   "nothing\n"
                                                                   "answer 1000\n"));
}

// A bundle with the scenario program, a word and two pictures.
class LinuxAlertsOfABundle : public ::testing::Test {
 protected:
  LinuxAlertsOfABundle() {
    folder_.write("A.app/Contents/Info.plist", "<plist><dict/></plist>");
    folder_.write("A.app/Contents/Resources/ko.lproj/Updater.json", "{\"OK\": \"확인\"}");
    for (const char* name : {"karno.png", "caution.png"})
      fs::copy_file(KARNO_SOURCES "/docs/screenshots/session.png",
                    folder_ / ("A.app/Contents/Resources/" + std::string(name)));
    fs::create_directory(folder_ / "A.app/Contents/MacOS");
    fs::copy_file(KARNO_COCOA_SCENARIOS, program_);
  }

  std::string shown(const std::string& scenario) {
    return onScreen(program_, "ko_KR.UTF-8", scenario).output;
  }

 private:
  const TemporaryFolder folder_;
  const std::string program_ = folder_ / "A.app/Contents/MacOS/A";
};

TEST_F(LinuxAlertsOfABundle, HaveTheirOnlyButtonInTheUsersLanguage) {
  EXPECT_EQ(shown("alert/look-without-button"), launchedOnLinuxAndEnded("Karno\n"
                                                                        "Karno\n"
                                                                        "확인\n"
                                                                        "\n"
                                                                        "nothing\n"
                                                                        "answer 1000\n"));
}

TEST_F(LinuxAlertsOfABundle, ShowASignOfCautionWhenTheyAreCritical) {
  EXPECT_EQ(shown("alert/critical"), launchedOnLinuxAndEnded("2 pictures, nothing\nanswer 1000\n"));
  EXPECT_EQ(shown("alert/informational"), launchedOnLinuxAndEnded("1 pictures, nothing\nanswer 1000\n"));
}

TEST(LinuxAlertsOnScreen, ArePainted) {
  EXPECT_EQ(onScreen("alert/painted").output, launchedOnLinuxAndEnded("F3F3F3\n"));
}

TEST(LinuxAlertsOnScreen, AreLargeEnoughForEveryText) {
  EXPECT_EQ(onScreen("alert/sizes").output, launchedOnLinuxAndEnded("nothing: nothing\n"
                                                                    "one letter: nothing\n"
                                                                    "English: nothing\n"
                                                                    "German: nothing\n"
                                                                    "Japanese: nothing\n"
                                                                    "one long word: nothing\n"
                                                                    "long titles: nothing\n"
                                                                    "many sentences: nothing\n"
                                                                    "many lines: nothing\n"));
}

}  // namespace
}  // namespace karno::test
