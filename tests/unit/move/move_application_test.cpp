#include "move/move_application.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "moving_machine.h"
#include "util/utilities.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::failureAlert;
using test::kDownloaded;
using test::kInstalled;
using test::kTrashed;
using test::moveError;
using test::MovingMachine;
using test::question;
using ::testing::IsEmpty;

constexpr const char* kOfferFromDownloads =
    "I can move myself to the Applications folder if you'd like. This will keep your Downloads folder "
    "uncluttered.";
constexpr const char* kMoving = "INFO -- Moving myself to the Applications folder";
constexpr const char* kSourceStays =
    "WARNING -- Could not delete application after moving it to Applications folder";
constexpr const char* kRelaunch =
    "/bin/sh|-c|(while /bin/kill -0 4242 >&/dev/null; do /bin/sleep 0.1; done; /usr/bin/xattr -d -r "
    "com.apple.quarantine '/Applications/Karno.app'; /usr/bin/open '/Applications/Karno.app') &";
constexpr const char* kDetach = "/bin/sh|-c|(/bin/sleep 5 && /usr/bin/hdiutil detach '/dev/disk4s1') &";

constexpr long kDoNotMove = platform::kAlertSecondButtonReturn;

const std::string kScriptFailure = "{NSAppleScriptErrorNumber = \"-600\";}";

TEST(Move, CopiesTheBundleRemovesTheOldOneAndOpensTheNew) {
  MovingMachine machine;

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt(kInstalled), "new launcher");
  EXPECT_FALSE(machine.files.fileExists(kDownloaded));
  EXPECT_THAT(machine.fileManager.trashed, IsEmpty());
  EXPECT_THAT(machine.commands.started, ElementsAre(kRelaunch));
  EXPECT_THAT(machine.console(), ElementsAre(kMoving));
  EXPECT_THAT(machine.log(), IsEmpty());
}

TEST(Move, IsRefusedOffTheMainThread) {
  MovingMachine machine;
  std::optional<Error> error;

  machine.onThread([&] { error = moveApplicationToApplicationsFolder(false); });
  machine.runUntilIdle();

  EXPECT_EQ(error, moveError(22, "Cannot run on background thread"));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(Move, IsNothingToDoInAnApplicationsFolder) {
  MovingMachine machine("/Users/tester/Applications/Karno.app");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_THAT(machine.commands.started, IsEmpty());
}

TEST(Move, LooksForADiskImageBeforeItLooksAtTheFolder) {
  MovingMachine machine("/Volumes/Applications/Karno.app");
  machine.withDiskImageAt("/Volumes/Applications", "/dev/disk4s1");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.commands.ran, ElementsAre(test::kHdiutilLine));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

// The default keeps the question from being needed; the routine itself does not ask for it.
TEST(Move, DoesNotLookAtTheSuppressionDefault) {
  MovingMachine machine;
  machine.userDefaults.standard().values.insert_or_assign("moveToApplicationsFolderAlertSuppress", true);

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_EQ(machine.alerts.shown().size(), 1U);
}

TEST(Move, IsNothingToDoAwayFromADiskImageWhenOnlyThatCounts) {
  MovingMachine machine;

  const auto error = moveApplicationToApplicationsFolder(true);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST(Move, HappensFromADiskImageWhenOnlyThatCounts) {
  MovingMachine machine("/Volumes/Karno/Karno.app");
  machine.withDiskImageAt("/Volumes/Karno", "/dev/disk4s1");

  const auto error = moveApplicationToApplicationsFolder(true);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt(kInstalled), "new launcher");
}

class MoveThatIsDeclined : public ::testing::TestWithParam<long> {};

TEST_P(MoveThatIsDeclined, ChangesNothing) {
  MovingMachine machine;
  machine.withInstalledCopy();
  machine.alerts.answerNext(GetParam());

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, moveError(89, "User cancelled"));
  EXPECT_EQ(machine.launcherAt(kDownloaded), "new launcher");
  EXPECT_EQ(machine.launcherAt(kInstalled), "old launcher");
  EXPECT_THAT(machine.commands.started, IsEmpty());
  EXPECT_EQ(machine.alerts.shown().size(), 1U);
  EXPECT_THAT(machine.console(), ElementsAre("INFO -- User cancelled the move"));
}

// Any answer but the first button; 0 is that of an alert that could not be shown.
INSTANTIATE_TEST_SUITE_P(Answers, MoveThatIsDeclined, ::testing::Values(kDoNotMove, 1002, 0));

TEST(MoveFlag, IsUpWhileTheUserIsAsked) {
  MovingMachine machine;
  bool whileAsked = false;
  machine.alerts.answerNext(kDoNotMove, [&] { whileAsked = moveRoutineInProgress(); });

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_TRUE(whileAsked);
  EXPECT_FALSE(moveRoutineInProgress());
}

TEST(MoveFlag, IsUpUntilTheFailureHasBeenShown) {
  MovingMachine machine;
  machine.fileManager.copyFailures.emplace(kInstalled, Error::posix(ENOSPC));
  bool whileShown = false;
  machine.alerts.answerNext(platform::kAlertFirstButtonReturn);
  machine.alerts.answerNext(platform::kAlertFirstButtonReturn, [&] { whileShown = moveRoutineInProgress(); });

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_TRUE(whileShown);
  EXPECT_FALSE(moveRoutineInProgress());
}

TEST(MoveOverACopy, TrashesTheOldOne) {
  MovingMachine machine;
  machine.withInstalledCopy();

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt(kInstalled), "new launcher");
  EXPECT_EQ(machine.launcherAt(kTrashed), "old launcher");
  EXPECT_FALSE(machine.files.fileExists(kDownloaded));
  EXPECT_THAT(machine.console(), ElementsAre(kMoving));
}

TEST(MoveOverALinkThatLeadsNowhere, TrashesTheLink) {
  MovingMachine machine;
  machine.files.addSymbolicLink(kInstalled, "/Volumes/Gone/Karno.app");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt(kInstalled), "new launcher");
  EXPECT_EQ(machine.files.destinationOfSymbolicLink(kTrashed).value(), "/Volumes/Gone/Karno.app");
  EXPECT_THAT(machine.commands.ran, IsEmpty());
  EXPECT_THAT(machine.console(), ElementsAre(kMoving));
}

TEST(MoveOverACopy, ThatRunsSwitchesToIt) {
  MovingMachine machine;
  machine.withInstalledCopy();
  machine.processTable.addApplication(kInstalled);

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt(kDownloaded), "new launcher");
  EXPECT_EQ(machine.launcherAt(kInstalled), "old launcher");
  EXPECT_THAT(machine.commands.ran, ElementsAre("/usr/bin/open|/Applications/Karno.app"));
  EXPECT_THAT(machine.commands.started, IsEmpty());
  EXPECT_THAT(machine.console(), ElementsAre(kMoving, "INFO -- Switching to an already running version"));
  EXPECT_FALSE(moveRoutineInProgress());
}

TEST(MoveOverACopy, ThatRunsIsDoneThoughItCannotBeOpened) {
  MovingMachine machine;
  machine.withInstalledCopy();
  machine.processTable.addApplication(kInstalled);
  machine.commands.answers.insert_or_assign("/usr/bin/open|/Applications/Karno.app", Error::posix(ENOENT));

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.console(), ElementsAre(kMoving, "INFO -- Switching to an already running version",
                                             Error::posix(ENOENT).localizedDescription()));
}

// With privileges nobody asks whether it runs.
TEST(MoveOverACopy, ThatRunsAndMayNotBeWrittenReplacesIt) {
  MovingMachine machine;
  machine.withInstalledCopy();
  machine.files.readOnly = {kInstalled};
  machine.processTable.addApplication(kInstalled);

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.commands.ran, IsEmpty());
  EXPECT_THAT(machine.commands.started, ElementsAre(kRelaunch));
}

TEST(MoveOverACopy, ThatCannotBeTrashedFails) {
  MovingMachine machine;
  machine.withInstalledCopy();
  machine.fileManager.trashFailures.emplace(kInstalled, Error::posix(EPERM));
  machine.appleScripts.error = kScriptFailure;

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, moveError(14, "Failed to trash pre-existing app"));
  EXPECT_EQ(machine.launcherAt(kDownloaded), "new launcher");
  EXPECT_EQ(machine.launcherAt(kInstalled), "old launcher");
  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kOfferFromDownloads), failureAlert()));
  EXPECT_THAT(machine.commands.started, IsEmpty());
  EXPECT_THAT(machine.console(), ElementsAre(kMoving, "Trash AppleScript error: " + kScriptFailure,
                                             "ERROR -- Could not trash '/Applications/Karno.app'"));
}

TEST(MoveThatCannotCopy, FailsAndKeepsTheOldBundle) {
  MovingMachine machine;
  machine.fileManager.copyFailures.emplace(kInstalled, Error::posix(ENOSPC));

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, moveError(14, "Failed to copy bundle"));
  EXPECT_EQ(machine.launcherAt(kDownloaded), "new launcher");
  EXPECT_THAT(machine.alerts.shown(), ElementsAre(question(kOfferFromDownloads), failureAlert()));
  EXPECT_THAT(machine.commands.started, IsEmpty());
  EXPECT_THAT(
      machine.console(),
      ElementsAre(
          kMoving,
          "ERROR -- Could not copy '/Users/tester/Downloads/Karno.app' to '/Applications/Karno.app' (" +
              Error::posix(ENOSPC).description() + ")",
          "ERROR -- Could not copy myself to /Applications/Karno.app"));
}

TEST(MoveThatCannotDeleteTheOldBundle, IsDoneAllTheSame) {
  MovingMachine machine;
  machine.files.failRemove(kDownloaded, EPERM);
  machine.fileManager.trashFailures.emplace(kDownloaded, Error::posix(EPERM));
  machine.appleScripts.error = kScriptFailure;

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.commands.started, ElementsAre(kRelaunch));
  EXPECT_THAT(machine.console(),
              ElementsAre(kMoving,
                          "WARNING -- Could not delete '/Users/tester/Downloads/Karno.app': " +
                              Error::posix(EPERM).localizedDescription(),
                          "Trash AppleScript error: " + kScriptFailure,
                          "ERROR -- Could not trash '/Users/tester/Downloads/Karno.app'", kSourceStays));
  EXPECT_EQ(machine.alerts.shown().size(), 1U);
}

TEST(MoveFromADiskImage, DeletesNothingAndDetachesTheImage) {
  MovingMachine machine("/Volumes/Karno/Karno.app");
  machine.withDiskImageAt("/Volumes/Karno", "/dev/disk4s1");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt("/Volumes/Karno/Karno.app"), "new launcher");
  EXPECT_THAT(machine.fileManager.trashed, IsEmpty());
  EXPECT_THAT(machine.commands.started, ElementsAre(kRelaunch, kDetach));
}

TEST(MoveFromADiskImage, ThatFailsLeavesTheImageMounted) {
  MovingMachine machine("/Volumes/Karno/Karno.app");
  machine.withDiskImageAt("/Volumes/Karno", "/dev/disk4s1");
  machine.fileManager.copyFailures.emplace(kInstalled, Error::posix(ENOSPC));

  static_cast<void>(moveApplicationToApplicationsFolder(false));

  EXPECT_THAT(machine.commands.started, IsEmpty());
}

TEST(MoveFromInsideAnotherApplication, LeavesTheOldBundleThere) {
  const std::string nested = "/Users/tester/Suite.app/Contents/Helpers/Karno.app";
  MovingMachine machine(nested);

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt(nested), "new launcher");
  EXPECT_EQ(machine.launcherAt(kInstalled), "new launcher");
  EXPECT_THAT(machine.commands.started, ElementsAre(kRelaunch));
}

TEST(MoveFromInsideAnotherApplication, OnADiskImageLeavesTheImageMounted) {
  const std::string folder = "/Volumes/Suite/Suite.app/Contents/Helpers";
  MovingMachine machine(folder + "/Karno.app");
  machine.withDiskImageAt(folder, "/dev/disk4s1");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.commands.started, ElementsAre(kRelaunch));
}

TEST(MoveDestination, IsWhereTheApplicationsFolderReallyLies) {
  MovingMachine machine;
  machine.files.addDirectory("/Volumes/Data/Programs");
  machine.standardFolders.local = "/Link";
  machine.files.addSymbolicLink("/Link", "/Volumes/Data/Programs");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt("/Volumes/Data/Programs/Karno.app"), "new launcher");
}

TEST(MoveDestination, KeepsTheBundlesName) {
  MovingMachine machine("/Users/tester/Desktop/Anna's \"Kärno\"\n2.app");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine.launcherAt("/Applications/Anna's \"Kärno\"\n2.app"), "new launcher");
  EXPECT_THAT(
      machine.commands.started,
      ElementsAre("/bin/sh|-c|(while /bin/kill -0 4242 >&/dev/null; do /bin/sleep 0.1; done; /usr/bin/xattr "
                  "-d -r com.apple.quarantine '/Applications/Anna'\\''s \"Kärno\"\n2.app'; /usr/bin/open "
                  "'/Applications/Anna'\\''s \"Kärno\"\n2.app') &"));
}

// The link leads to where the launcher is, whose folder has another name.
class MoveOntoItself : public ::testing::Test {
 protected:
  MoveOntoItself() { machine_.files.addSymbolicLink(kInstalled, kDownloaded); }

  MovingMachine machine_;
};

TEST_F(MoveOntoItself, FailsAsACopyThatCannotBeMade) {
  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, Utilities::errorWithPOSIXCode(14, "Failed to copy bundle"));
  EXPECT_EQ(machine_.launcherAt(kDownloaded), "new launcher");
  EXPECT_THAT(machine_.fileManager.trashed, IsEmpty());
  EXPECT_THAT(machine_.fileManager.copies, IsEmpty());
  EXPECT_THAT(machine_.console(),
              ElementsAre(kMoving, "ERROR -- Could not copy myself to /Applications/Karno.app"));
}

TEST_F(MoveOntoItself, AsksForNoPasswordToFail) {
  machine_.withReadOnlyApplications();

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, Utilities::errorWithPOSIXCode(14, "Could not copy to /Applications with authorization"));
  EXPECT_EQ(machine_.launcherAt(kDownloaded), "new launcher");
  EXPECT_THAT(machine_.authorisations.calls, IsEmpty());
  EXPECT_THAT(machine_.console(),
              ElementsAre(kMoving, "ERROR -- Could not copy myself to /Applications with authorization"));
}

// Thrown away or ejected while the question was up.
class MoveOfABundleThatIsGone : public ::testing::Test {
 protected:
  MoveOfABundleThatIsGone() {
    machine_.withInstalledCopy();
    machine_.alerts.answerNext(platform::kAlertFirstButtonReturn,
                               [this] { machine_.files.remove(kDownloaded); });
  }

  MovingMachine machine_;
};

TEST_F(MoveOfABundleThatIsGone, LeavesTheInstalledOneInItsPlace) {
  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, Utilities::errorWithPOSIXCode(14, "Failed to copy bundle"));
  EXPECT_EQ(machine_.launcherAt(kInstalled), "old launcher");
  EXPECT_THAT(machine_.fileManager.trashed, IsEmpty());
  EXPECT_THAT(machine_.console(),
              ElementsAre(kMoving, "ERROR -- Could not copy myself to /Applications/Karno.app"));
}

TEST_F(MoveOfABundleThatIsGone, AsksForNoPasswordToRemoveTheInstalledOne) {
  machine_.withReadOnlyApplications();

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, Utilities::errorWithPOSIXCode(14, "Could not copy to /Applications with authorization"));
  EXPECT_EQ(machine_.launcherAt(kInstalled), "old launcher");
  EXPECT_THAT(machine_.authorisations.calls, IsEmpty());
}

TEST(MoveOfALauncherInTheFolderThatApplicationsLeadsTo, IsNotNeeded) {
  MovingMachine machine("/Volumes/Data/Programs/Karno.app");
  machine.files.addSymbolicLink("/Users/tester/Applications", "/Volumes/Data/Programs");

  EXPECT_EQ(moveApplicationToApplicationsFolder(false), std::nullopt);

  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_EQ(machine.launcherAt("/Volumes/Data/Programs/Karno.app"), "new launcher");
}

}  // namespace
}  // namespace karno
