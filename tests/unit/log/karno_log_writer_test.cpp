#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "log/karno_log.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::kLogFile;
using test::kLogFolder;
using test::Line;
using ::testing::IsEmpty;
using ::testing::SizeIs;

void logLines(int count) {
  for (int i = 0; i < count; ++i) KarnoLog::manager().logInfo("line");
}

TEST(KarnoLogPaths, LieInTheLogsFolderOfTheUsersLibrary) {
  FakePlatform machine;

  const KarnoLog& log = KarnoLog::manager();

  EXPECT_EQ(log.logDirectory(), "/Users/tester/Library/Logs/Karno for macOS");
  EXPECT_EQ(log.filename(), "/Users/tester/Library/Logs/Karno for macOS/karno-wrapper.log");
  EXPECT_EQ(log.oldFilename(), "/Users/tester/Library/Logs/Karno for macOS/karno-wrapper.old.log");
}

TEST(KarnoLogPaths, FollowTheFirstLibraryFolder) {
  FakePlatform machine;
  machine.files.folders[platform::UserFolder::Library] = {"/first/Library", "/second/Library"};

  KarnoLog::manager().logInfo("hello");
  machine.runFor(1);

  EXPECT_THAT(machine.files.lines("/first/Library/Logs/Karno for macOS/karno-wrapper.log"), SizeIs(1));
}

TEST(KarnoLogCreation, MakesTheFolderAndItsTwoQueuesAndWritesNothing) {
  FakePlatform machine;

  static_cast<void>(KarnoLog::manager());
  machine.runFor(1);

  EXPECT_TRUE(machine.files.fileExists(kLogFolder));
  EXPECT_THAT(machine.dispatch.serialQueues(),
              ElementsAre("it.vantul.KarnoWrapper.Logger", "it.vantul.KarnoWrapper.FlushLog"));
  EXPECT_THAT(machine.console(), IsEmpty());
  EXPECT_FALSE(machine.files.fileExists(kLogFile));
}

TEST(KarnoLogCreation, IsContentWithAFolderThatIsThere) {
  FakePlatform machine;
  machine.files.addDirectory(kLogFolder);

  KarnoLog::manager().logInfo("hello");
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "hello")));
}

TEST(KarnoLogCreation, WithoutAFolderMakesNoQueuesAndSaysNothing) {
  FakePlatform machine;
  machine.files.failCreateDirectory(kLogFolder, EACCES);

  static_cast<void>(KarnoLog::manager());
  machine.runFor(1);

  EXPECT_THAT(machine.dispatch.serialQueues(), IsEmpty());
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(KarnoLogCreation, WithoutAFolderStillWritesToTheConsole) {
  FakePlatform machine;
  machine.files.failCreateDirectory(kLogFolder, EACCES);

  KarnoLog::manager().logInfo("hello");
  machine.runFor(10);

  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("INFO", "hello")));
  EXPECT_EQ(machine.files.opens(kLogFile), 0);
}

TEST(KarnoLogWriter, LooksForTheFirstTimeAfterATenthOfASecond) {
  FakePlatform machine;
  KarnoLog::manager().logInfo("hello");

  machine.runFor(0.099);
  const auto before = machine.log();
  machine.runFor(0.001);
  const auto after = machine.log();

  EXPECT_THAT(before, IsEmpty());
  EXPECT_THAT(after, ElementsAre(Line("INFO", "hello")));
}

TEST(KarnoLogWriter, LooksAgainEveryTenthOfASecond) {
  FakePlatform machine;
  static_cast<void>(KarnoLog::manager());
  machine.runFor(60.05);
  KarnoLog::manager().logInfo("hello");

  machine.runFor(0.049);
  const auto before = machine.log();
  machine.runFor(0.001);
  const auto after = machine.log();

  EXPECT_THAT(before, IsEmpty());
  EXPECT_THAT(after, ElementsAre(Line("INFO", "hello")));
}

TEST(KarnoLogWriter, DrainsTheWholeQueueWithoutAPause) {
  FakePlatform machine;

  logLines(5000);
  machine.runFor(0.1);

  EXPECT_THAT(machine.fullLogLines(), SizeIs(5000));
}

TEST(KarnoLogWriter, KeepsTheFileOpenBetweenLines) {
  FakePlatform machine;

  logLines(3);
  machine.runFor(1);
  logLines(3);
  machine.runFor(1);

  EXPECT_EQ(machine.files.opens(kLogFile), 1);
}

TEST(KarnoLogWriter, AppendsToAFileThatIsThere) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "of an earlier run\n");

  KarnoLog::manager().logInfo("hello");
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ElementsAre(Line("", "of an earlier run"), Line("INFO", "hello")));
}

TEST(KarnoLogWriter, DropsLinesWhileTheFileCannotBeOpenedAndTriesAgainForEach) {
  FakePlatform machine;
  machine.files.failOpenForAppending(kLogFile);

  logLines(7);
  machine.runFor(1);

  EXPECT_EQ(machine.files.opens(kLogFile), 7);
  EXPECT_THAT(machine.log(), IsEmpty());
  EXPECT_THAT(machine.console(), SizeIs(7));
}

TEST(KarnoLogWriter, WritesAgainAsSoonAsTheFileCanBeOpened) {
  FakePlatform machine;
  machine.files.failOpenForAppending(kLogFile);
  KarnoLog::manager().logInfo("lost");
  machine.runFor(1);

  machine.files.clearFailures();
  KarnoLog::manager().logInfo("kept");
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "kept")));
}

TEST(KarnoLogWriter, IgnoresThatTheDiskIsFull) {
  FakePlatform machine;
  machine.files.setDiskFull(true);
  KarnoLog::manager().logInfo("lost");
  machine.runFor(1);

  machine.files.setDiskFull(false);
  KarnoLog::manager().logInfo("kept");
  machine.runFor(1);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "kept")));
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("INFO", "lost"), Line("INFO", "kept")));
}

}  // namespace
}  // namespace karno
