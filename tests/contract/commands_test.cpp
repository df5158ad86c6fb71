#include "platform/commands.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <vector>

#include "platform/shell.h"
#include "printing.h"
#include "programs.h"

namespace karno::test {
namespace {

using platform::Error;
using platform::RunningProcess;
using testing::ElementsAreArray;

class CommandsContract : public ProgramsContract {};

TEST_P(CommandsContract, TellHowTheyEndedAndWhatTheyPrinted) {
  const std::string text("two\nlines \0 and a byte: \xFF", 25);
  for (const int status : {0, 3}) {
    const auto end = services_.commands.run(programs_->commandPrinting(text, status));

    ASSERT_TRUE(end);
    EXPECT_EQ(end.value().end.terminationStatus, status);
    EXPECT_EQ(end.value().end.terminationReason, platform::TerminationReason::Exit);
    EXPECT_EQ(end.value().standardOutput, text);
  }
}

TEST_P(CommandsContract, AreRefusedWhenTheyAreNotThere) {
  const platform::TaskLaunch command{.executablePath = here_ / "none", .arguments = {}};

  const auto end = services_.commands.run(command);

  ASSERT_FALSE(end);
  EXPECT_EQ(end.error(), Error::posix(ENOENT));
  EXPECT_EQ(services_.commands.start(command), Error::posix(ENOENT));
}

TEST_P(CommandsContract, RunOnAsChildrenOnceTheyAreStarted) {
  const std::string path = programs_->sleeper("Sleeper");

  const auto error = services_.commands.start({.executablePath = path, .arguments = {"60"}});
  const std::vector<RunningProcess> processes = services_.processList.runningProcesses();
  const auto child = std::ranges::find(processes, path, &RunningProcess::executablePath);

  EXPECT_EQ(error, std::nullopt);
  ASSERT_NE(child, processes.end());
  EXPECT_EQ(child->parentProcessIdentifier, services_.processes.currentProcessIdentifier());
  EXPECT_EQ(services_.processes.terminate(child->processIdentifier), 0);
}

class ShellContract : public ProgramsContract {
 protected:
  std::unique_ptr<platform::ShellPipe> open(const std::string& text, int status = 0) {
    auto pipe = services_.shell.open(programs_->linePrinting(text, status));
    return pipe ? std::move(pipe.value()) : nullptr;
  }
};

TEST_P(ShellContract, IsReadPieceByPiece) {
  struct Case {
    std::string text;
    std::vector<std::string> pieces;
  };
  const std::string most(4095, 'x');
  for (const auto& [text, pieces] :
       {Case{"", {}}, Case{"\n", {"\n"}}, Case{"one\n\ntwo", {"one\n", "\n", "two"}},
        Case{most + "\n", {most, "\n"}}, Case{most + most + "y", {most, most, "y"}},
        Case{std::string("a\0b\n\0c\nd", 8), {"a", "", "d"}}}) {
    const auto pipe = open(text);
    ASSERT_NE(pipe, nullptr);

    std::vector<std::string> read;
    while (const auto piece = pipe->readPiece()) read.push_back(*piece);

    EXPECT_THAT(read, ElementsAreArray(pieces));
    EXPECT_TRUE(pipe->close());
  }
}

TEST_P(ShellContract, IsClosedWellThoughItsLineFailed) {
  const auto pipe = open("", 7);
  ASSERT_NE(pipe, nullptr);

  EXPECT_EQ(pipe->readPiece(), std::nullopt);
  EXPECT_TRUE(pipe->close());
}

TEST_P(ShellContract, IsClosedWellThoughItWasNotReadToTheEnd) {
  const auto pipe = open("one\ntwo\n");
  ASSERT_NE(pipe, nullptr);

  EXPECT_EQ(pipe->readPiece(), "one\n");
  EXPECT_TRUE(pipe->close());
}

INSTANTIATE_TEST_SUITE_P(Fake, CommandsContract, testing::Values(makeFakePrograms));
INSTANTIATE_TEST_SUITE_P(Native, CommandsContract, testing::Values(makeNativePrograms));
INSTANTIATE_TEST_SUITE_P(Fake, ShellContract, testing::Values(makeFakePrograms));
INSTANTIATE_TEST_SUITE_P(Native, ShellContract, testing::Values(makeNativePrograms));

}  // namespace
}  // namespace karno::test
