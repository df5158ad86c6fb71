#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "log/karno_log.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;

// Notes when and on which thread flushes were completed.
class Completions {
 public:
  explicit Completions(FakePlatform& machine) : machine_(machine) {}

  std::function<void()> note() {
    return [this] {
      seconds.push_back(machine_.seconds());
      threads.push_back(machine_.scheduler.currentThreadName());
    };
  }

  std::vector<double> seconds;
  std::vector<std::string> threads;

 private:
  FakePlatform& machine_;
};

// Logs one line 10 ms before each of the first `looks` looks of a flush that begins in 50 ms. The writer
// comes by every 100 ms, so those looks find a line waiting.
void keepBusy(FakePlatform& machine, int looks) {
  static_cast<void>(KarnoLog::manager());
  machine.onThread([&machine, looks] {
    machine.dispatch.sleep(0.04);
    for (int i = 0; i < looks; ++i) {
      KarnoLog::manager().logInfo("busy");
      machine.dispatch.sleep(1);
    }
  });
  machine.runFor(0.05);
}

TEST(KarnoLogFlush, OfAnEmptyQueueCompletesAtOnceOnTheFlushQueue) {
  FakePlatform machine;
  Completions completions(machine);

  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runUntilIdle();

  EXPECT_THAT(completions.seconds, ElementsAre(0.0));
  EXPECT_THAT(completions.threads, ElementsAre("it.vantul.KarnoWrapper.FlushLog"));
}

TEST(KarnoLogFlush, ReturnsBeforeItCompletes) {
  FakePlatform machine;
  Completions completions(machine);

  KarnoLog::manager().flushWithCompletion(completions.note());

  EXPECT_THAT(completions.seconds, IsEmpty());
}

TEST(KarnoLogFlush, LooksAgainOneSecondAfterItFoundALine) {
  FakePlatform machine;
  Completions completions(machine);
  KarnoLog::manager().logInfo("hello");

  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runFor(10);

  EXPECT_THAT(completions.seconds, ElementsAre(1.0));
  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "hello")));
}

TEST(KarnoLogFlush, CompletesAtTheFirstLookThatFindsNothing) {
  FakePlatform machine;
  Completions completions(machine);
  keepBusy(machine, 2);

  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runFor(10);

  EXPECT_THAT(completions.seconds, ElementsAre(2.05));
}

TEST(KarnoLogFlush, CompletesAfterFiveLooksThatAllFoundALine) {
  FakePlatform machine;
  Completions completions(machine);
  keepBusy(machine, 100);

  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runFor(20);

  EXPECT_THAT(completions.seconds, ElementsAre(5.05));
}

TEST(KarnoLogFlush, WaitsForItsTurnBehindAnother) {
  FakePlatform machine;
  Completions completions(machine);
  keepBusy(machine, 100);

  KarnoLog::manager().flushWithCompletion(completions.note());
  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runFor(20);

  EXPECT_THAT(completions.seconds, ElementsAre(5.05, 10.05));
}

TEST(KarnoLogFlush, IsContentWithoutACompletion) {
  FakePlatform machine;
  Completions completions(machine);
  KarnoLog::manager().logInfo("hello");

  KarnoLog::manager().flushWithCompletion(nullptr);
  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runFor(10);

  EXPECT_THAT(completions.seconds, ElementsAre(1.0));
}

TEST(KarnoLogFlush, IsSilentWithoutVerboseLogging) {
  FakePlatform machine;

  KarnoLog::manager().flushWithCompletion(nullptr);
  machine.runFor(10);

  EXPECT_THAT(machine.console(), IsEmpty());
  EXPECT_THAT(machine.log(), IsEmpty());
}

TEST(KarnoLogFlush, WithVerboseLoggingWaitsForItsOwnLine) {
  FakePlatform machine;
  machine.withVerboseLogging(true);
  Completions completions(machine);

  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runFor(10);

  EXPECT_THAT(machine.log(), ElementsAre(Line("DEBUG", "LOG[FLUSH] Flushing log")));
  EXPECT_THAT(completions.seconds, ElementsAre(1.0));
}

TEST(KarnoLogFlush, CompletesThoughTheFileCannotBeOpened) {
  FakePlatform machine;
  machine.files.failOpenForAppending(test::kLogFile);
  Completions completions(machine);
  KarnoLog::manager().logInfo("lost");

  KarnoLog::manager().flushWithCompletion(completions.note());
  machine.runFor(10);

  EXPECT_THAT(completions.seconds, ElementsAre(1.0));
}

TEST(KarnoLogFlush, CompletesThoughTheFolderCouldNotBeMade) {
  FakePlatform machine;
  machine.files.failCreateDirectory(test::kLogFolder, EACCES);
  Completions completions(machine);
  KarnoLog::manager().logInfo("never written");

  KarnoLog::manager().flushWithCompletion(completions.note());
  KarnoLog::manager().flushWithCompletion(nullptr);
  machine.runFor(10);

  EXPECT_THAT(completions.threads, ElementsAre("global(0)"));
}

}  // namespace
}  // namespace karno
