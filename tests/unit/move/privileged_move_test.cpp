#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "move/move_application.h"
#include "move/privileged_copy.h"
#include "moving_machine.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::RightAnswer;
using platform::TaskEnd;
using platform::TerminationReason;
using test::failureAlert;
using test::kDownloaded;
using test::kInstalled;
using test::moveError;
using test::MovingMachine;
using test::question;
using ::testing::IsEmpty;

constexpr const char* kRight = "copyRight system.privilege.admin 19";
constexpr const char* kRemove = "/bin/rm|-rf|/Applications/Karno.app";
constexpr const char* kCopy = "/bin/cp|-pR|/Users/tester/Downloads/Karno.app|/Applications/Karno.app";
constexpr const char* kMovingWithPassword = "INFO -- Moving myself to the Applications folder";
constexpr const char* kFailed = "ERROR -- Could not copy myself to /Applications with authorization";
const std::string kOfferToTheAdministrator =
    "I can move myself to the Applications folder if you'd like. Note that this will require an "
    "administrator "
    "password.";

std::string executed(const char* line) { return std::string("execute ") + line; }

// A downloaded launcher that may not write to the Applications folder.
class PrivilegedMove : public ::testing::Test {
 protected:
  PrivilegedMove() { machine_.withReadOnlyApplications(); }

  // Nothing was moved, and the user was told.
  void expectFailure(const std::optional<Error>& error) {
    EXPECT_EQ(error, moveError(14, "Could not copy to /Applications with authorization"));
    EXPECT_THAT(machine_.console(), ElementsAre(kMovingWithPassword, kFailed));
    EXPECT_THAT(machine_.alerts.shown(), ElementsAre(question(kOfferToTheAdministrator), failureAlert()));
    EXPECT_EQ(machine_.launcherAt(kDownloaded), "new launcher");
    EXPECT_THAT(machine_.commands.started, IsEmpty());
    EXPECT_FALSE(moveRoutineInProgress());
  }

  MovingMachine machine_{kDownloaded};
};

TEST_F(PrivilegedMove, RemovesThenCopiesAsTheAdministrator) {
  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine_.authorisations.calls,
              ElementsAre("create", kRight, "look up", executed(kRemove), executed(kCopy), "free"));
  EXPECT_FALSE(machine_.files.fileExists(kDownloaded));
  EXPECT_THAT(machine_.fileManager.copies, IsEmpty());
  EXPECT_EQ(machine_.commands.started.size(), 1U);
  EXPECT_THAT(machine_.console(), ElementsAre(kMovingWithPassword));
}

TEST_F(PrivilegedMove, KeepsTheOldBundleOfADiskImage) {
  machine_.withDiskImageAt("/Users/tester/Downloads", "/dev/disk4s1");

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine_.launcherAt(kDownloaded), "new launcher");
  EXPECT_EQ(machine_.commands.started.size(), 2U);
}

TEST_F(PrivilegedMove, IsDoneThoughTheOldBundleCannotBeDeleted) {
  machine_.files.failRemove(kDownloaded, EPERM);
  machine_.fileManager.trashFailures.emplace(kDownloaded, Error::posix(EPERM));
  machine_.appleScripts.error = "{}";

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(machine_.console().back(),
            "WARNING -- Could not delete application after moving it to Applications folder");
}

TEST_F(PrivilegedMove, DoesNotHappenWhenTheUserGivesNoPassword) {
  machine_.authorisations.rightAnswer = RightAnswer::Cancelled;

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, moveError(89, "User cancelled - they did not authorise"));
  EXPECT_THAT(machine_.authorisations.calls, ElementsAre("create", kRight, "free"));
  EXPECT_THAT(machine_.console(),
              ElementsAre(kMovingWithPassword, "INFO -- Not moving because user canceled authorization"));
  EXPECT_THAT(machine_.alerts.shown(), ElementsAre(question(kOfferToTheAdministrator)));
  EXPECT_EQ(machine_.launcherAt(kDownloaded), "new launcher");
  EXPECT_FALSE(moveRoutineInProgress());
}

TEST_F(PrivilegedMove, FailsWhenTheRightIsRefused) {
  machine_.authorisations.rightAnswer = RightAnswer::Refused;

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
  EXPECT_THAT(machine_.authorisations.calls, ElementsAre("create", kRight, "free"));
}

TEST_F(PrivilegedMove, FailsWithoutAnAuthorisation) {
  machine_.authorisations.canCreate = false;

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
  EXPECT_THAT(machine_.authorisations.calls, ElementsAre("create"));
}

TEST_F(PrivilegedMove, FailsOnASystemThatRunsNothingWithPrivileges) {
  machine_.authorisations.canExecute = false;

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
  EXPECT_THAT(machine_.authorisations.calls, ElementsAre("create", kRight, "look up", "free"));
}

TEST_F(PrivilegedMove, FailsWhenTheRemovalCannotBeRun) {
  machine_.authorisations.answers.insert_or_assign(kRemove, Error::posix(EPERM));

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
  EXPECT_THAT(machine_.authorisations.calls,
              ElementsAre("create", kRight, "look up", executed(kRemove), "free"));
}

TEST_F(PrivilegedMove, FailsWhenTheRemovalIsKilled) {
  machine_.authorisations.answers.insert_or_assign(
      kRemove, TaskEnd{.terminationStatus = 9, .terminationReason = TerminationReason::UncaughtSignal});

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
}

// Mostly there is nothing to remove.
TEST_F(PrivilegedMove, GoesOnThoughTheRemovalEndsWithAnyStatus) {
  machine_.authorisations.answers.insert_or_assign(kRemove, TaskEnd{.terminationStatus = 1});

  const auto error = moveApplicationToApplicationsFolder(false);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine_.authorisations.calls,
              ElementsAre("create", kRight, "look up", executed(kRemove), executed(kCopy), "free"));
}

TEST_F(PrivilegedMove, FailsWhenTheCopyCannotBeRun) {
  machine_.authorisations.answers.insert_or_assign(kCopy, Error::posix(ECHILD));

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
}

TEST_F(PrivilegedMove, FailsWhenTheCopyEndsWithAnotherStatusThanZero) {
  machine_.authorisations.answers.insert_or_assign(kCopy, TaskEnd{.terminationStatus = 1});

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
  EXPECT_EQ(machine_.authorisations.calls.back(), "free");
}

TEST_F(PrivilegedMove, FailsWhenTheCopyIsKilled) {
  machine_.authorisations.answers.insert_or_assign(
      kCopy, TaskEnd{.terminationStatus = 0, .terminationReason = TerminationReason::UncaughtSignal});

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
}

TEST_F(PrivilegedMove, LosesACopyThatWasThereWhenTheNewOneFails) {
  machine_.withInstalledCopy();
  machine_.authorisations.whenExecuted = [this](const std::string& line) {
    machine_.files.readOnly.clear();  // administrators may write there
    if (line == kRemove) machine_.files.remove(kInstalled);
  };
  machine_.authorisations.answers.insert_or_assign(kCopy, TaskEnd{.terminationStatus = 1});

  const auto error = moveApplicationToApplicationsFolder(false);

  expectFailure(error);
  EXPECT_FALSE(machine_.files.fileExists(kInstalled));
}

class PathsForPrivileges : public ::testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(PathsForPrivileges, MayNotBeWrong) {
  MovingMachine machine;

  const PrivilegedCopy copy = copyBundleWithPrivileges(GetParam().first, GetParam().second);

  EXPECT_EQ(copy, PrivilegedCopy::Failed);
  EXPECT_THAT(machine.authorisations.calls, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Pairs, PathsForPrivileges,
                         ::testing::Values(std::pair(kDownloaded, "/Applications/Karno"),
                                           std::pair(kDownloaded, "/Applications"),
                                           std::pair(kDownloaded, ""), std::pair(kDownloaded, " \n"),
                                           std::pair(kDownloaded, "/Applications/Karno.APP"),
                                           std::pair("", kInstalled), std::pair(" \t\n", kInstalled)));

}  // namespace
}  // namespace karno
