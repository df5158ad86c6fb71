#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "log/karno_log.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(KarnoLogFields, AreThoseOfAFreshLog) {
  FakePlatform machine;

  KarnoLog& log = KarnoLog::manager();

  EXPECT_EQ(log.processIdentifier(), 4242);
  EXPECT_EQ(log.filename(), log.logDirectory() + "/karno-wrapper.log");
  EXPECT_EQ(log.oldFilename(), log.logDirectory() + "/karno-wrapper.old.log");
  EXPECT_EQ(log.count(), 0U);
  EXPECT_NE(log.queue(), nullptr);
  EXPECT_NE(log.flushQueue(), nullptr);
  EXPECT_THAT(log.queuedLogs(), IsEmpty());
  EXPECT_EQ(log.nextEntry(), std::nullopt);
}

TEST(KarnoLogFields, CountTheLinesThatTheWriterHasTaken) {
  FakePlatform machine;
  KarnoLog& log = KarnoLog::manager();

  for (int line = 0; line < 3; ++line) log.logInfo("line");
  machine.runFor(1);

  EXPECT_EQ(log.count(), 3U);
  EXPECT_NE(log.filePointer(), nullptr);
}

TEST(KarnoLogFields, HoldTheLinesThatWaitInTheirOrder) {
  FakePlatform machine;
  KarnoLog& log = KarnoLog::manager();

  log.addEntry("one");
  log.addEntry("two");
  const auto waiting = log.queuedLogs();
  const auto oldest = log.nextEntry();

  EXPECT_THAT(waiting, ElementsAre("one", "two"));
  EXPECT_EQ(oldest, "one");
  EXPECT_THAT(log.queuedLogs(), ElementsAre("two"));
}

TEST(KarnoLogFields, CanBeSet) {
  FakePlatform machine;
  KarnoLog& log = KarnoLog::manager();

  log.setProcessIdentifier(7);
  log.setQueuedLogs({"set"});
  log.logInfo("told");

  EXPECT_EQ(log.queuedLogs().front(), "set");
  EXPECT_THAT(log.queuedLogs().back(), HasSubstr(" (7) [INFO] told"));
}

TEST(KarnoLogFields, LeadTheWriterToAnotherFileWhenTheyAreSet) {
  FakePlatform machine;
  KarnoLog& log = KarnoLog::manager();
  machine.files.addDirectory("/tmp");

  log.setFilename("/tmp/other.log");
  log.setOldFilename("/tmp/other.old.log");
  log.setFilePointer(nullptr);
  log.setCount(41);
  log.logInfo("here");
  machine.runFor(1);

  EXPECT_THAT(machine.files.text("/tmp/other.log"), HasSubstr("here"));
  EXPECT_EQ(log.count(), 42U);
}

TEST(KarnoLogFields, HoldNoQueueWithoutALogFolder) {
  FakePlatform machine;
  machine.files.failCreateDirectory(test::kLogFolder, EROFS);

  EXPECT_EQ(KarnoLog::manager().queue(), nullptr);
  EXPECT_EQ(KarnoLog::manager().flushQueue(), nullptr);
}

TEST(KarnoLogFields, LeaveAFlushWithoutItsQueueNothingToWaitFor) {
  FakePlatform machine;
  bool isFlushed = false;

  KarnoLog::manager().setFlushQueue(nullptr);
  KarnoLog::manager().flushWithCompletion([&] { isFlushed = true; });
  machine.runUntilIdle();

  EXPECT_TRUE(isFlushed);
}

}  // namespace
}  // namespace karno
