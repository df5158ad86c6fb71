#include "karnoctl/diagnose/diagnosis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_platform.h"
#include "written_log.h"

namespace karno::karnoctl {
namespace {

using test::diagnosisOf;
using test::namesOf;
using test::WrittenLog;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

class Diagnosing : public testing::Test {
 protected:
  WrittenLog waitingForFuse() {
    return WrittenLog()
        .beginsToRun()
        .says("EmbeddedApp[CONFIGURE] Use File Provider = No (admin)")
        .says("Fuse[SYSTEM] CPU: 'arm64'")
        .says("Fuse[SYSTEM] O/S Version: '14.5'")
        .says("Fuse[SYSTEM] Fuse Version: '4.0.4'")
        .says("FuseRequirements: System requirements not met")
        .says("Startup[FUSE] Waiting for Fuse to install");
  }

  test::FakePlatform machine_;
};

TEST_F(Diagnosing, FindsNothingInAHealthySession) {
  const WrittenLog log = WrittenLog().beginsToRun().launches().says("Sparkle[START] Starting Up");

  const Diagnosis found = diagnosisOf(log);

  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes, IsEmpty());
}

TEST_F(Diagnosing, FindsNothingWhereTheUserHasQuit) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .launches()
                             .says("Notify[LISTEN] Received 'user-selected-quit'", 60)
                             .ends(0, 1, 1);

  const Diagnosis found = diagnosisOf(log, false);

  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes, IsEmpty());
}

TEST_F(Diagnosing, FindsNothingInTheAdministratorsSettings) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .says("Object=YES")
                             .says("EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)")
                             .launches()
                             .says("Sparkle[CONFIG] Updates disabled by admin");

  const Diagnosis found = diagnosisOf(log);

  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes,
              ElementsAre("The administrator has disabled updates: none is looked for by itself."));
}

TEST_F(Diagnosing, TellsHowLongItWaitsForMacFUSEAndWhatWouldDo) {
  const WrittenLog log = waitingForFuse().says("FuseRequirements: System requirements not met", 7500);

  const Diagnosis found = diagnosisOf(log);

  ASSERT_THAT(namesOf(found), ElementsAre("macfuse-too-old"));
  EXPECT_EQ(found.findings[0].detail,
            "the launcher has been waiting for it for 2 h 5 min, macFUSE 4.0.4 is installed, macFUSE 4.4.1 "
            "or later "
            "would do, the administrator has chosen this build");
  EXPECT_THAT(found.findings[0].lines, SizeIs(2));
}

// The log of a launcher whose end is not known may have been copied at any time.
TEST_F(Diagnosing, MeasuresTheWaitInALogThatSomebodySentUpToItsLastLine) {
  WrittenLog log = waitingForFuse().says("FuseRequirements: System requirements not met", 60);
  Diagnostician reader;
  for (const std::string& line : log.lines()) reader.take(line);

  const Diagnosis found =
      reader.diagnosis([](const auto&) { return std::nullopt; }, log.date() + std::chrono::hours(48));

  EXPECT_THAT(found.findings[0].detail, StartsWith("the launcher has been waiting for it for 1 min, "));
}

TEST_F(Diagnosing, SaysWhereNoMacFUSEDoes) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .says("Fuse[SYSTEM] CPU: 'arm64'")
                             .says("Fuse[SYSTEM] O/S Version: '13.0'")
                             .says("Fuse[SYSTEM] Fuse is not installed");

  EXPECT_EQ(diagnosisOf(log).findings[0].detail,
            "none does on this system: one would on macOS 13.0.0 or later, or on macOS 12 or earlier, and "
            "13.0 counts as older than 13.0.0");
}

TEST_F(Diagnosing, TellsThatTheAdministratorHasChosenTheBuildThatFails) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .says("EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)")
                             .says(
                                 "Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded "
                                 "Karno app");

  EXPECT_EQ(diagnosisOf(log).findings[0].detail, "the administrator has chosen this build");
}

TEST_F(Diagnosing, TellsHowOftenAndAfterHowLongTheClientEnded) {
  WrittenLog log;
  for (const double seconds : {0.3, 0.5, 0.3, 0.4})
    log.by(4000 + static_cast<int>(seconds * 10) + static_cast<int>(log.lines().size()))
        .beginsToRun()
        .launches()
        .ends(1, 1, seconds);

  const Diagnosis found = diagnosisOf(log, false);

  ASSERT_THAT(namesOf(found), ElementsAre("client-ends-at-once"));
  EXPECT_EQ(found.findings[0].detail, "0.3 to 0.5 s after each of 4 starts, the last time with status 1");
  EXPECT_THAT(found.findings[0].lines, ElementsAre(EndsWith("Child terminated (status:1, reason:1)")));
}

TEST_F(Diagnosing, CountsTheStartsInVainUpToTheLastThatWasNot) {
  const WrittenLog log = WrittenLog()
                             .by(4001)
                             .beginsToRun()
                             .launches()
                             .ends(1, 1, 0.3)
                             .by(4002)
                             .beginsToRun()
                             .launches()
                             .ends(1, 1, 600)
                             .by(4003)
                             .beginsToRun()
                             .launches()
                             .ends(11, 2, 0.3);

  const Diagnosis found = diagnosisOf(log, false);

  ASSERT_THAT(namesOf(found), ElementsAre("client-killed"));
  EXPECT_EQ(found.findings[0].detail, "signal 11 after 0.3 s");
}

// The two are told by two threads.
TEST_F(Diagnosing, TellsOfAClientWhoseEndIsLoggedBeforeItsLaunch) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .says("Startup[LAUNCH] Launching Karno.app")
                             .ends(3, 1, 0.2)
                             .says("Startup[LAUNCH] Launched Karno.app (pid: 4250)");

  const Diagnosis found = diagnosisOf(log, false);

  ASSERT_THAT(namesOf(found), ElementsAre("client-failed"));
  EXPECT_EQ(found.findings[0].detail, "status 3 after 0.2 s");
}

TEST_F(Diagnosing, PutsTheCauseBeforeWhatFollowsFromIt) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .says("Sparkle[ABORT] Update Aborted (no feed)")
                             .says("Fuse[SYSTEM] Fuse is not installed")
                             .says("Main: Need to install Fuse");

  EXPECT_THAT(namesOf(diagnosisOf(log)),
              ElementsAre("macfuse-missing", "update-failed", "waits-for-an-answer"));
}

TEST_F(Diagnosing, ShowsTheFirstAndTheLastOfManyLines) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .says("Notify[LISTEN] Received an unknown notification '1'")
                             .says("Notify[LISTEN] Received an unknown notification '2'")
                             .says("Notify[LISTEN] Received an unknown notification '3'");

  EXPECT_THAT(diagnosisOf(log).findings[0].lines, ElementsAre(EndsWith("'1'"), EndsWith("'3'")));
}

TEST_F(Diagnosing, TellsOfALauncherThatEndedWithoutAWord) {
  const WrittenLog log = WrittenLog().beginsToRun().launches();

  const Diagnosis found = diagnosisOf(log, false);

  ASSERT_THAT(namesOf(found), ElementsAre("launcher-killed"));
  EXPECT_THAT(found.findings[0].lines, ElementsAre(EndsWith("Main: Started Karno successfully")));
}

TEST_F(Diagnosing, DoesNotSayThatADeadLauncherWaitsForAnAnswer) {
  const WrittenLog log = WrittenLog().beginsToRun().says("Main: Failed to start Karno");

  EXPECT_THAT(namesOf(diagnosisOf(log, false)), ElementsAre("launcher-killed"));
  EXPECT_THAT(namesOf(diagnosisOf(log, true)), ElementsAre("waits-for-an-answer"));
}

TEST_F(Diagnosing, TellsOfTheSessionBeforeThatItEndedWithoutAWord) {
  const WrittenLog log = WrittenLog().by(1).beginsToRun().launches().by(2).beginsToRun().launches();

  const Diagnosis found = diagnosisOf(log);

  ASSERT_THAT(namesOf(found), ElementsAre("launcher-killed"));
  EXPECT_EQ(found.findings[0].detail, "the session before this one");
}

TEST_F(Diagnosing, CannotTellFromALogThatWasSentWhetherItsLauncherRuns) {
  const WrittenLog log = WrittenLog().beginsToRun().launches();

  const Diagnosis found = diagnosisOf(log, std::nullopt);

  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes,
              ElementsAre("Whether this launcher still runs cannot be told from the log alone."));
}

TEST_F(Diagnosing, KeepsTheLinesOfTwoLaunchersApart) {
  const WrittenLog log = WrittenLog()
                             .by(1)
                             .beginsToRun()
                             .by(2)
                             .beginsToRun()
                             .by(1)
                             .says("Fuse[SYSTEM] Fuse is not installed")
                             .by(2)
                             .launches();

  const Diagnosis found = diagnosisOf(log);

  EXPECT_EQ(found.session->processIdentifier, 2);
  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes,
              ElementsAre("Two launchers ran at the same time; this is about the one that began last."));
}

TEST_F(Diagnosing, TakesALauncherThatHandsOverForNoSecondOne) {
  const WrittenLog log = WrittenLog()
                             .by(1)
                             .beginsToRun()
                             .launches()
                             .says("Notify[LISTEN] Received 'restart-wrapper'")
                             .says("Startup[RESTART] Karno has quit - restarting wrapper (-launch Karno.app)")
                             .by(2)
                             .beginsToRun()
                             .by(1)
                             .quits("Restart Wrapper")
                             .by(2)
                             .launches();

  const Diagnosis found = diagnosisOf(log);

  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes, IsEmpty());
}

// A process identifier is given out again.
TEST_F(Diagnosing, BeginsAnewWithEachStart) {
  const WrittenLog log = WrittenLog()
                             .beginsToRun()
                             .says("Fuse[SYSTEM] Fuse is not installed")
                             .quits("x")
                             .beginsToRun()
                             .launches();

  EXPECT_THAT(diagnosisOf(log).findings, IsEmpty());
}

TEST_F(Diagnosing, SaysWhereTheLogDoesNotReachBackToTheStart) {
  const WrittenLog log = WrittenLog().says("Main: Started Karno successfully");

  const Diagnosis found = diagnosisOf(log);

  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes, ElementsAre("The log does not reach back to its start."));
}

TEST_F(Diagnosing, TellsOfALineThatAnotherOneFollowsWithoutANewline) {
  const WrittenLog log = WrittenLog().beginsToRun().hasLine(
      "2024-03-05 14:07:09:042+0100 (4242) [INFO] Main: St2024-03-05 14:07:09:042+0100 (4242) [INFO] Main: "
      "x");

  EXPECT_THAT(namesOf(diagnosisOf(log)), ElementsAre("lines-missing"));
}

// The next launcher's line follows the farewell without a newline between them.
TEST_F(Diagnosing, TakesAFarewellForAnEndThoughItsLineWasNotWrittenWhole) {
  const WrittenLog log = WrittenLog().beginsToRun().launches().says(
      "AppDelegate:: Terminating2024-03-05 14:07:09:042+0100 (4243) [INFO] Main: x");

  const Diagnosis found = diagnosisOf(log, std::nullopt);

  EXPECT_THAT(namesOf(found), ElementsAre("lines-missing"));
  EXPECT_EQ(found.runs, false);
}

TEST_F(Diagnosing, TellsOfAClockThatWasSetBack) {
  const WrittenLog log = WrittenLog().beginsToRun().launches().says("Sparkle[START] Starting Up", -3600);

  const Diagnosis found = diagnosisOf(log);

  ASSERT_THAT(namesOf(found), ElementsAre("clock-set-back"));
  EXPECT_THAT(found.findings[0].lines, ElementsAre(StartsWith("2024-03-05 13:07:09:042+0100 ")));
}

// The launcher writes dates as the user's locale has them.
class DatesOfAnotherLocale : public testing::TestWithParam<const char*> {
  test::FakePlatform machine_;
};

TEST_P(DatesOfAnotherLocale, AreNotComputedWith) {
  const std::string begin = std::string(GetParam()) + " (4242) [INFO] ";
  const WrittenLog log = WrittenLog()
                             .hasLine(begin + "===================================================")
                             .hasLine(begin + "Startup[LAUNCH] Launching Karno.app")
                             .hasLine(begin + "Startup[LAUNCH] Launched Karno.app (pid: 4250)")
                             .hasLine(begin + "Startup[TERMINATED] Child terminated (status:3, reason:1)")
                             .hasLine(begin + "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated");

  const Diagnosis found = diagnosisOf(log, false);

  ASSERT_THAT(namesOf(found), ElementsAre("client-failed"));
  EXPECT_EQ(found.findings[0].detail, "status 3");
  EXPECT_THAT(found.notes, ElementsAre(HasSubstr("how long things took cannot be told")));
}

INSTANTIATE_TEST_SUITE_P(Each, DatesOfAnotherLocale,
                         testing::Values("٢٠٢٤-٠٣-٠٥ ١٤:٠٧:٠٩:٠٤٢+٠١٠٠", "2567-03-05 14:07:09:042+0700",
                                         "1445-08-24 14:07:09:042+0300", "0006-03-05 14:07:09:042+0900",
                                         "2024-03-05 02:07:09:042 PM+0100"));

TEST_F(Diagnosing, CountsLinesThatNoLauncherHasBegun) {
  const WrittenLog log = WrittenLog()
                             .hasLine("Nov 23 00:21:54 mac kernel: hello")
                             .hasLine("2024-03-05 14:07:09:042+0100 (7) [INFO] Server started")
                             .hasLine("2024-03-05 14:07:09:042+0100 (7) [notice] Main: x")
                             .hasLine(std::string(1000, '\0'))
                             .beginsToRun()
                             .launches();

  const Diagnosis found = diagnosisOf(log);

  EXPECT_THAT(found.findings, IsEmpty());
  EXPECT_THAT(found.notes, ElementsAre(StartsWith("Lines that were not read as a launcher's: 4. ")));
}

TEST_F(Diagnosing, HasNoSessionWhereNoLineIsOfALauncher) {
  const WrittenLog log = WrittenLog().hasLine("hello").says("Server started");

  EXPECT_FALSE(diagnosisOf(log).session);
}

}  // namespace
}  // namespace karno::karnoctl
