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
using test::kOldLogFile;
using test::Line;
using ::testing::IsEmpty;

// Logs "line <first>" to "line <last>" and lets the writer take them.
void logLines(FakePlatform& machine, int first, int last) {
  for (int i = first; i <= last; ++i) KarnoLog::manager().logInfo("line " + std::to_string(i));
  machine.runFor(1);
}

std::vector<Line> linesOf(const FakePlatform& machine, const std::string& path) {
  std::vector<Line> lines;
  for (const std::string& text : machine.files.lines(path)) lines.push_back(Line::parse(text));
  return lines;
}

std::vector<Line> lines(int first, int last) {
  std::vector<Line> result;
  for (int i = first; i <= last; ++i) result.emplace_back("INFO", "line " + std::to_string(i));
  return result;
}

std::vector<std::string> filesIn(const FakePlatform& machine, const std::string& folder) {
  std::vector<std::string> names;
  machine.files.enumerate(folder, [&](const platform::DirectoryEntry& entry) {
    names.push_back(entry.relativePath);
    return true;
  });
  return names;
}

TEST(KarnoLogSizeCheck, ReadsTheSizeOnEveryTenthLineOnly) {
  FakePlatform machine;

  logLines(machine, 1, 9);
  const int afterNine = machine.files.sizeReads();
  logLines(machine, 10, 10);
  const int afterTen = machine.files.sizeReads();
  logLines(machine, 11, 29);
  const int afterTwentyNine = machine.files.sizeReads();
  logLines(machine, 30, 30);
  const int afterThirty = machine.files.sizeReads();

  EXPECT_EQ(afterNine, 0);
  EXPECT_EQ(afterTen, 1);
  EXPECT_EQ(afterTwentyNine, 2);
  EXPECT_EQ(afterThirty, 3);
}

TEST(KarnoLogSizeCheck, DoesNotCountLinesThatHaveNoFileToGoTo) {
  FakePlatform machine;
  machine.files.failOpenForAppending(kLogFile);
  logLines(machine, 1, 5);
  machine.files.clearFailures();

  logLines(machine, 6, 14);
  const int afterNineWritten = machine.files.sizeReads();
  logLines(machine, 15, 15);
  const int afterTenWritten = machine.files.sizeReads();

  EXPECT_EQ(afterNineWritten, 0);
  EXPECT_EQ(afterTenWritten, 1);
}

TEST(KarnoLogSizeCheck, TakesAFileThatHasVanishedAsEmpty) {
  FakePlatform machine;
  logLines(machine, 1, 9);
  machine.files.remove(kLogFile);

  logLines(machine, 10, 10);

  EXPECT_THAT(filesIn(machine, kLogFolder), IsEmpty());
}

TEST(KarnoLogSizeCheck, RotatesNothingForAFileThatHasVanished) {
  FakePlatform machine;
  machine.files.addFile(kOldLogFile, "older\n");
  logLines(machine, 1, 9);
  machine.files.remove(kLogFile);

  logLines(machine, 10, 10);

  EXPECT_EQ(machine.files.text(kOldLogFile), "older\n");
}

TEST(KarnoLogRotation, LeavesAFileOfOneByteLessAlone) {
  FakePlatform machine;
  logLines(machine, 1, 9);
  machine.files.setSize(kLogFile, 9'999'999);

  logLines(machine, 10, 10);

  EXPECT_EQ(machine.log(), lines(1, 10));
  EXPECT_FALSE(machine.files.fileExists(kOldLogFile));
}

TEST(KarnoLogRotation, LosesOnlyTheLineWhoseCheckRotates) {
  FakePlatform machine;
  logLines(machine, 1, 9);
  machine.files.setSize(kLogFile, 10'000'000);

  logLines(machine, 10, 25);

  EXPECT_EQ(linesOf(machine, kOldLogFile), lines(1, 9));
  EXPECT_EQ(machine.log(), lines(11, 25));
}

TEST(KarnoLogRotation, MakesTheNewFileOnlyWithTheNextLine) {
  FakePlatform machine;
  logLines(machine, 1, 9);
  machine.files.setSize(kLogFile, 10'000'000);

  logLines(machine, 10, 10);
  const bool rightAfter = machine.files.fileExists(kLogFile);
  logLines(machine, 11, 11);

  EXPECT_FALSE(rightAfter);
  EXPECT_EQ(machine.log(), lines(11, 11));
}

TEST(KarnoLogRotation, HappensWithinOneDrainOfTheQueueAsWell) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "");
  machine.files.setSize(kLogFile, 10'000'000);

  logLines(machine, 1, 30);

  EXPECT_EQ(linesOf(machine, kOldLogFile), lines(1, 9));
  EXPECT_EQ(machine.log(), lines(11, 30));
}

TEST(KarnoLogRotation, OfALargeFileFoundAtTheStartWaitsForTheTenthLine) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "");
  machine.files.setSize(kLogFile, 50'000'000);

  logLines(machine, 1, 9);
  const auto afterNine = machine.log();
  logLines(machine, 10, 11);

  EXPECT_EQ(afterNine, lines(1, 9));
  EXPECT_EQ(machine.log(), lines(11, 11));
}

TEST(KarnoLogRotation, WaitsForTheTenthLineAlsoBeyondTheLimit) {
  FakePlatform machine;
  logLines(machine, 1, 12);
  machine.files.setSize(kLogFile, 20'000'000);

  logLines(machine, 13, 21);

  EXPECT_EQ(linesOf(machine, kOldLogFile), lines(1, 19));
  EXPECT_EQ(machine.log(), lines(21, 21));
}

TEST(KarnoLogRotation, ReplacesTheOldGenerationAndKeepsNoThird) {
  FakePlatform machine;
  machine.files.addFile(kOldLogFile, "older\n");
  logLines(machine, 1, 9);
  machine.files.setSize(kLogFile, 10'000'000);

  logLines(machine, 10, 11);
  machine.files.setSize(kLogFile, 10'000'000);
  logLines(machine, 12, 21);

  EXPECT_THAT(filesIn(machine, kLogFolder), ElementsAre("karno-wrapper.log", "karno-wrapper.old.log"));
  EXPECT_EQ(linesOf(machine, kOldLogFile), lines(11, 19));
  EXPECT_EQ(machine.log(), lines(21, 21));
}

TEST(KarnoLogRotation, IsNotLogged) {
  FakePlatform machine;
  logLines(machine, 1, 9);
  machine.files.setSize(kLogFile, 10'000'000);

  logLines(machine, 10, 11);

  EXPECT_EQ(machine.consoleMessages(), lines(1, 11));
}

TEST(KarnoLogRotationFailure, ToRemoveTheOldFileLosesEveryTenthLine) {
  FakePlatform machine;
  machine.files.addFile(kOldLogFile, "older\n");
  machine.files.failRemove(kOldLogFile, EACCES);
  machine.files.addFile(kLogFile, "");
  machine.files.setSize(kLogFile, 10'000'000);

  logLines(machine, 1, 31);

  std::vector<Line> expected = lines(1, 9);
  for (const Line& line : lines(11, 19)) expected.push_back(line);
  for (const Line& line : lines(21, 29)) expected.push_back(line);
  expected.emplace_back("INFO", "line 31");
  EXPECT_EQ(machine.log(), expected);
  EXPECT_EQ(machine.files.text(kOldLogFile), "older\n");
  EXPECT_EQ(machine.consoleMessages(), lines(1, 31));
}

TEST(KarnoLogRotationFailure, ToMoveTheFileLosesEveryTenthLineAndTheOldFile) {
  FakePlatform machine;
  machine.files.addFile(kOldLogFile, "older\n");
  machine.files.addFile(kLogFile, "");
  machine.files.setSize(kLogFile, 10'000'000);
  machine.files.failMove(kLogFile, EACCES);

  logLines(machine, 1, 21);

  std::vector<Line> expected = lines(1, 9);
  for (const Line& line : lines(11, 19)) expected.push_back(line);
  expected.emplace_back("INFO", "line 21");
  EXPECT_EQ(machine.log(), expected);
  EXPECT_FALSE(machine.files.fileExists(kOldLogFile));
}

TEST(KarnoLogRotationFailure, IsMadeGoodTenLinesLater) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "");
  machine.files.setSize(kLogFile, 10'000'000);
  machine.files.failMove(kLogFile, EACCES);
  logLines(machine, 1, 10);

  machine.files.clearFailures();
  logLines(machine, 11, 22);

  std::vector<Line> expected = lines(1, 9);
  for (const Line& line : lines(11, 19)) expected.push_back(line);
  EXPECT_EQ(linesOf(machine, kOldLogFile), expected);
  EXPECT_EQ(machine.log(), lines(21, 22));
}

TEST(KarnoLogRotationFailure, KeepsTheFileOpen) {
  FakePlatform machine;
  machine.files.addFile(kLogFile, "");
  machine.files.setSize(kLogFile, 10'000'000);
  machine.files.failMove(kLogFile, EACCES);

  logLines(machine, 1, 31);

  EXPECT_EQ(machine.files.opens(kLogFile), 1);
}

}  // namespace
}  // namespace karno
