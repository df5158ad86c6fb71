#include <gmock/gmock.h>

#include "elements_are.h"
#include "move/move_application.h"
#include "moving_machine.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Alert;
using test::kDownloaded;
using test::kInstalled;
using test::MovingMachine;
using test::question;

constexpr const char* kOffer = "I can move myself to the Applications folder if you'd like.";
constexpr const char* kQuestionInDownloads =
    "I can move myself to the Applications folder if you'd like. This will keep your Downloads folder "
    "uncluttered.";
constexpr const char* kOfferWithPassword =
    "I can move myself to the Applications folder if you'd like. Note that this will require an "
    "administrator password.";

TEST(MoveQuestion, MentionsTheDownloadsFolder) {
  MovingMachine machine(kDownloaded);

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kQuestionInDownloads)));
}

// As with Applications folders, only the letters are compared.
TEST(MoveQuestion, MentionsTheDownloadsFolderForOneThatBeginsLikeIt) {
  MovingMachine machine("/Users/tester/Downloads 2/Karno.app");

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kQuestionInDownloads)));
}

TEST(MoveQuestion, MentionsADownloadsFolderOfAnyDomainOnce) {
  MovingMachine machine("/Network/Downloads/Karno.app");
  machine.standardFolders.folders[platform::StandardFolder::Downloads] = {"/Users/tester/Downloads",
                                                                          "/Network/Downloads", "/Network"};

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kQuestionInDownloads)));
}

TEST(MoveQuestion, IsShortElsewhere) {
  MovingMachine machine("/Users/tester/Desktop/Karno.app");

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kOffer)));
}

TEST(MoveQuestion, MentionsThePasswordInsteadWhereOneIsNeeded) {
  MovingMachine machine(kDownloaded);
  machine.withReadOnlyApplications();

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kOfferWithPassword)));
}

TEST(MoveQuestion, MentionsThePasswordForACopyThatMayNotBeWritten) {
  MovingMachine machine("/Users/tester/Desktop/Karno.app");
  machine.withInstalledCopy();
  machine.files.readOnly = {kInstalled};

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kOfferWithPassword)));
}

TEST(MoveQuestion, IsInTheUsersLanguageSentenceBySentence) {
  MovingMachine machine(kDownloaded);
  machine.bundles.main().texts = {
      {"MoveApplication/Move to Applications folder?", "In den Ordner „Programme“ bewegen?"},
      {"MoveApplication/This will keep your Downloads folder uncluttered.", "Das schafft Ordnung."},
      {"MoveApplication/Do Not Move", "Nicht bewegen"}};

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.alerts.shown(),
              ElementsAre(Alert{
                  .messageText = "In den Ordner „Programme“ bewegen?",
                  .informativeText =
                      "I can move myself to the Applications folder if you'd like. Das schafft Ordnung.",
                  .buttons = {{.title = "Move to Applications Folder", .keyEquivalent = ""},
                              {.title = "Nicht bewegen", .keyEquivalent = "\033"}}}));
}

TEST(MoveQuestion, BringsTheLauncherToTheFrontFirst) {
  MovingMachine machine;
  machine.application.active = false;
  std::size_t alertsThen = 99;
  machine.application.whenActivated = [&] { alertsThen = machine.alerts.shown().size(); };

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_EQ(machine.application.activations(), 1);
  EXPECT_EQ(alertsThen, 0U);
}

TEST(MoveQuestion, LeavesALauncherInFrontWhereItIs) {
  MovingMachine machine;

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_EQ(machine.application.activations(), 0);
}

}  // namespace
}  // namespace karno
