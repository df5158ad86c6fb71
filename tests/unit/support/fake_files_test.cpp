#include "fake_files.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "printing.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::Error;
using ::testing::IsEmpty;

constexpr const char* kFile = "/Users/tester/a.txt";

std::vector<std::string> entriesOf(const FakePlatform& machine, const std::string& folder,
                                   bool enterFolders) {
  std::vector<std::string> entries;
  machine.files.enumerate(folder, [&](const platform::DirectoryEntry& entry) {
    entries.push_back(entry.relativePath);
    return enterFolders;
  });
  return entries;
}

TEST(FakeFiles, HaveAHomeWithALibrary) {
  FakePlatform machine;

  EXPECT_TRUE(machine.files.fileExists("/Users/tester/Library"));
  EXPECT_EQ(machine.files.homeDirectory(), "/Users/tester");
}

TEST(FakeFiles, KeepLinesInTheStreamUntilItIsFlushed) {
  FakePlatform machine;
  const auto stream = machine.files.openForAppending(kFile);

  stream->writeLine("one");
  const std::string before = machine.files.text(kFile);
  stream->flush();

  EXPECT_EQ(before, "");
  EXPECT_EQ(machine.files.text(kFile), "one\n");
}

TEST(FakeFiles, CountBytesThatAreNotStored) {
  FakePlatform machine;
  machine.files.addFile(kFile, "12345");

  machine.files.setSize(kFile, 10'000'000);

  EXPECT_EQ(machine.files.sizeInBytes(kFile), 10'000'000U);
  EXPECT_EQ(machine.files.text(kFile), "12345");
}

TEST(FakeFiles, FailAsTheyAreTold) {
  FakePlatform machine;
  machine.files.addFile(kFile, "x");
  machine.files.failRemove(kFile, EACCES);
  machine.files.failMove(kFile, EROFS);
  machine.files.failRead(kFile, EIO);
  machine.files.failCreateDirectory("/Users/tester/new", ENOSPC);
  machine.files.failOpenForAppending(kFile);

  EXPECT_EQ(machine.files.remove(kFile), Error::posix(EACCES));
  EXPECT_EQ(machine.files.move(kFile, "/b"), Error::posix(EROFS));
  EXPECT_EQ(machine.files.read(kFile).error(), Error::posix(EIO));
  EXPECT_EQ(machine.files.createDirectory("/Users/tester/new"), Error::posix(ENOSPC));
  EXPECT_EQ(machine.files.openForAppending(kFile), nullptr);
}

TEST(FakeFiles, WorkAgainWithoutFailures) {
  FakePlatform machine;
  machine.files.failCreateDirectory("/Users/tester/new", ENOSPC);

  machine.files.clearFailures();

  EXPECT_EQ(machine.files.createDirectory("/Users/tester/new"), std::nullopt);
  EXPECT_EQ(machine.files.createDirectory("/Users/tester/new"), std::nullopt);
}

TEST(FakeFiles, AreWalkedDepthFirst) {
  FakePlatform machine;
  machine.files.addFile("/f/a", "");
  machine.files.addFile("/f/b/c", "");
  machine.files.addFile("/f/d", "");

  EXPECT_THAT(entriesOf(machine, "/f", true), ElementsAre("a", "b", "b/c", "d"));
  EXPECT_THAT(entriesOf(machine, "/f", false), ElementsAre("a", "b", "d"));
  EXPECT_THAT(entriesOf(machine, "/missing", true), IsEmpty());
}

TEST(FakeFiles, AreCreatedAtTheTimeOfTheClock) {
  FakePlatform machine;
  machine.runFor(5);
  machine.files.addFile("/f/a", "");
  std::optional<platform::Date> created;

  machine.files.enumerate("/f", [&](const platform::DirectoryEntry& entry) {
    created = entry.creationDate;
    return true;
  });

  EXPECT_EQ(created, kStartOfTest + std::chrono::seconds(5));
}

}  // namespace
}  // namespace karno::test
