#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "ipc/karno_process_utils.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::kUnameLine;
using test::Line;
using ::testing::IsEmpty;

TEST(ExecuteCommand, WrapsTheCommandInAShellWithoutProfile) {
  FakePlatform machine;

  EXPECT_TRUE(KarnoProcessUtils::executeCommand("uname -m", nullptr, false, nullptr));

  EXPECT_THAT(machine.shell.lines(), ElementsAre(kUnameLine));
  EXPECT_THAT(machine.shell.closed, ElementsAre(kUnameLine));
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(ExecuteCommand, EscapesDoubleQuotesAndNothingElse) {
  FakePlatform machine;

  KarnoProcessUtils::executeCommand(R"(echo "a b" $HOME `id` \n 'c')", nullptr, false, nullptr);

  EXPECT_THAT(machine.shell.lines(),
              ElementsAre(R"(/bin/sh --noprofile -c "echo \"a b\" $HOME `id` \n 'c'")"));
}

TEST(ExecuteCommand, EscapesAQuoteBehindABackslashAllTheSame) {
  FakePlatform machine;

  KarnoProcessUtils::executeCommand(R"(echo \")", nullptr, false, nullptr);

  EXPECT_THAT(machine.shell.lines(), ElementsAre(R"(/bin/sh --noprofile -c "echo \\"")"));
}

TEST(ExecuteCommand, AppendsLineByLineWithTheNewlines) {
  FakePlatform machine;
  machine.shell.outputs[test::kSwVersLine] = "one\n\n two \nthree";
  std::vector<std::string> output = {"before"};

  EXPECT_TRUE(KarnoProcessUtils::executeCommand("sw_vers", &output, false, nullptr));

  EXPECT_THAT(output, ElementsAre("before", "one\n", "\n", " two \n", "three"));
}

TEST(ExecuteCommand, TrimsBothEndsAndKeepsEmptyEntries) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = " \t arm64 \r\n\n  \n\xA0x\x85\n";
  std::vector<std::string> output;

  KarnoProcessUtils::executeCommand("uname -m", &output, true, nullptr);

  EXPECT_THAT(output, ElementsAre("arm64", "", "", "x"));
}

TEST(ExecuteCommand, DeliversALongLineInPieces) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = std::string(5000, 'x') + "\n";
  std::vector<std::string> kept, trimmed;

  KarnoProcessUtils::executeCommand("uname -m", &kept, false, nullptr);
  KarnoProcessUtils::executeCommand("uname -m", &trimmed, true, nullptr);

  EXPECT_THAT(kept, ElementsAre(std::string(4095, 'x'), std::string(905, 'x') + "\n"));
  EXPECT_THAT(trimmed, ElementsAre(std::string(4095, 'x'), std::string(905, 'x')));
}

TEST(ExecuteCommand, ReadsBytesAsEightBitText) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "\xC3\xA9\xFF\n";
  std::vector<std::string> output;

  KarnoProcessUtils::executeCommand("uname -m", &output, true, nullptr);

  EXPECT_THAT(output, ElementsAre("Ã©ÿ"));
}

TEST(ExecuteCommand, EndsAPieceAtAZeroByte) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = std::string("ab\0cd\nef\n", 9);
  std::vector<std::string> output;

  KarnoProcessUtils::executeCommand("uname -m", &output, false, nullptr);

  EXPECT_THAT(output, ElementsAre("ab", "ef\n"));
}

TEST(ExecuteCommand, LeavesTheListEmptyWhenNothingIsPrinted) {
  FakePlatform machine;
  std::vector<std::string> output;
  std::optional<Error> error;

  EXPECT_TRUE(KarnoProcessUtils::executeCommand("true", &output, true, &error));

  EXPECT_THAT(output, IsEmpty());
  EXPECT_EQ(error, std::nullopt);
}

// A command whose output nobody reads would be stopped by it.
TEST(ExecuteCommand, ReadsWhatNobodyWantsToItsEnd) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "one\ntwo\n";

  EXPECT_TRUE(KarnoProcessUtils::executeCommand("uname -m", nullptr, true, nullptr));

  EXPECT_THAT(machine.shell.closed, ElementsAre(kUnameLine));
  EXPECT_THAT(machine.shell.closedUnread, IsEmpty());
}

TEST(ExecuteCommand, TellsWhenThePipeCannotBeOpened) {
  FakePlatform machine;
  machine.shell.openFailures[R"(/bin/sh --noprofile -c "echo \"x\"")"] = EMFILE;
  std::vector<std::string> output = {"before"};
  std::optional<Error> error;

  EXPECT_FALSE(KarnoProcessUtils::executeCommand("echo \"x\"", &output, true, &error));

  EXPECT_THAT(output, ElementsAre("before"));
  EXPECT_EQ(error,
            Error("NSPOSIXErrorDomain", EMFILE, {{"NSLocalizedDescription", "failed to run command"}}));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line(
                  "WARN", R"(Utilities:: Unable to open command (/bin/sh --noprofile -c "echo \"x\""))")));
}

TEST(ExecuteCommand, NeedsNoPlaceForTheError) {
  FakePlatform machine;
  machine.shell.openFailures[kUnameLine] = EMFILE;

  EXPECT_FALSE(KarnoProcessUtils::executeCommand("uname -m", nullptr, true, nullptr));
}

TEST(ExecuteCommand, FailsWithoutAnErrorWhenThePipeCannotBeClosed) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "arm64\n";
  machine.shell.closeFailures[kUnameLine] = true;
  std::vector<std::string> output;
  std::optional<Error> error;

  EXPECT_FALSE(KarnoProcessUtils::executeCommand("uname -m", &output, true, &error));

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(output, ElementsAre("arm64"));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", R"(Utilities:: Command Failed (/bin/sh --noprofile -c "uname -m"))")));
}

TEST(ExecuteCommand, LeavesAnErrorThatTheCallerHadAloneWhenItSucceeds) {
  FakePlatform machine;
  std::optional<Error> error = Error("before", 7);

  EXPECT_TRUE(KarnoProcessUtils::executeCommand("uname -m", nullptr, true, &error));

  EXPECT_EQ(error, Error("before", 7));
}

TEST(ExecuteCommand, LeavesAnErrorThatTheCallerHadAloneWhenThePipeCannotBeClosed) {
  FakePlatform machine;
  machine.shell.closeFailures[kUnameLine] = true;
  std::optional<Error> error = Error("before", 7);

  EXPECT_FALSE(KarnoProcessUtils::executeCommand("uname -m", nullptr, true, &error));

  EXPECT_EQ(error, Error("before", 7));
}

TEST(RunInMainThread, UsesTheMainDispatchQueue) {
  FakePlatform machine;

  KarnoProcessUtils::runInMainThread([] {});

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

TEST(RunInMainThread, NeverRunsTheBlockInline) {
  FakePlatform machine;
  std::vector<std::string> steps;

  KarnoProcessUtils::runInMainThread([&] { steps.push_back(machine.scheduler.currentThreadName()); });
  steps.push_back("returned");
  machine.runUntilIdle();

  EXPECT_THAT(steps, ElementsAre("returned", "main"));
}

TEST(RunInMainThread, HopsThereFromAnotherThread) {
  FakePlatform machine;
  std::string thread;

  machine.onThread(
      [&] { KarnoProcessUtils::runInMainThread([&] { thread = machine.scheduler.currentThreadName(); }); });
  machine.runUntilIdle();

  EXPECT_EQ(thread, "main");
}

TEST(RunOnBackgroundThread, GivesEveryBlockASerialQueueOfItsOwn) {
  FakePlatform machine;
  std::vector<std::string> threads;

  KarnoProcessUtils::runOnBackgroundThread([&] {
    machine.dispatch.sleep(5);
    threads.push_back(machine.scheduler.currentThreadName());
  });
  KarnoProcessUtils::runOnBackgroundThread([&] { threads.push_back(machine.scheduler.currentThreadName()); });
  EXPECT_THAT(threads, IsEmpty());
  machine.runFor(6);

  EXPECT_THAT(threads, ElementsAre("it.vantul.KarnoWrapper.bg.00000000-0000-4000-8000-000000000002",
                                   "it.vantul.KarnoWrapper.bg.00000000-0000-4000-8000-000000000001"));
}

TEST(RunOnBackgroundQueue, RunsTheBlockLaterOnThatQueue) {
  FakePlatform machine;
  const auto queue = machine.dispatch.makeSerialQueue("mine");
  std::string thread = "none";

  KarnoProcessUtils::runOnBackgroundQueue(*queue, [&] { thread = machine.scheduler.currentThreadName(); });
  EXPECT_EQ(thread, "none");
  machine.runUntilIdle();

  EXPECT_EQ(thread, "mine");
}

}  // namespace
}  // namespace karno
