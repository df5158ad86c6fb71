#include "platform/files.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <vector>

#include "elements_are.h"
#include "world.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::DirectoryEntry;
using platform::Error;
using platform::Files;
using platform::FileType;
using platform::UserFolder;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

class FilesContract : public Contract {
 protected:
  std::string textOf(const std::string& name) const {
    const auto text = files_.read(here_ / name);
    return text ? text.value() : text.error().description();
  }

  std::vector<std::pair<std::string, FileType>> entriesOf(const std::string& name) const {
    std::vector<std::pair<std::string, FileType>> entries;
    files_.enumerate(here_ / name, [&](const DirectoryEntry& entry) {
      entries.emplace_back(entry.relativePath, entry.type);
      return true;
    });
    return entries;
  }

  Files& files_ = services_.files;
};

TEST_P(FilesContract, HasTheUsersFoldersInTheHomeFolder) {
  const std::string home = files_.homeDirectory();

  EXPECT_THAT(files_.searchPath(UserFolder::Library), ElementsAre(home + "/Library"));
  EXPECT_THAT(files_.searchPath(UserFolder::Caches), ElementsAre(home + "/Library/Caches"));
  EXPECT_THAT(files_.searchPath(UserFolder::Downloads), ElementsAre(home + "/Downloads"));
  EXPECT_THAT(files_.searchPath(UserFolder::Applications), ElementsAre(home + "/Applications"));
  EXPECT_THAT(files_.searchPath(UserFolder::Trash), ElementsAre(home + "/.Trash"));
}

TEST_P(FilesContract, HasTheLibraryOfTheMachineBesideItsApplications) {
  const std::string applications = services_.standardFolders.localApplications();

  EXPECT_THAT(files_.localLibraryFolders(),
              ElementsAre(applications.substr(0, applications.rfind('/')) + "/Library"));
}

TEST_P(FilesContract, ReadsAFile) {
  const std::string bytes("a\0b\xFF\n", 5);

  here_.write("file", bytes);

  EXPECT_TRUE(files_.fileExists(here_ / "file"));
  EXPECT_EQ(files_.sizeInBytes(here_ / "file"), 5U);
  EXPECT_EQ(textOf("file"), bytes);
}

TEST_P(FilesContract, FindsAFolder) {
  here_.write("folder/file", "");

  EXPECT_TRUE(files_.fileExists(here_ / "folder"));
  EXPECT_TRUE(files_.sizeInBytes(here_ / "folder"));
  EXPECT_TRUE(files_.fileExists("/"));
}

TEST_P(FilesContract, FindsNothingWhereNothingIs) {
  here_.write("file", "");

  for (const char* name : {"none", "none/inner", "file/inner"}) {
    EXPECT_FALSE(files_.fileExists(here_ / name)) << name;
    EXPECT_EQ(files_.sizeInBytes(here_ / name), std::nullopt) << name;
  }
}

TEST_P(FilesContract, SaysWhyItCannotRead) {
  here_.write("file", "");
  here_.pipe("pipe");
  here_.link("circle", "circle");

  EXPECT_EQ(files_.read(here_ / "none").error(), Error::posix(ENOENT));
  EXPECT_EQ(files_.read(here_ / "file/inner").error(), Error::posix(ENOTDIR));
  EXPECT_EQ(files_.read(here_.folder()).error(), Error::posix(EISDIR));
  EXPECT_EQ(files_.read(here_ / "pipe").error(), Error::posix(EINVAL));
  EXPECT_EQ(files_.read(here_ / "circle").error(), Error::posix(ELOOP));
}

TEST_P(FilesContract, FollowsLinksAtTheEndOfAPathAndInIt) {
  here_.write("real/file", "text");
  here_.link("relative", "real/../real");
  here_.link("absolute", here_ / "real/file");

  EXPECT_EQ(textOf("relative/file"), "text");
  EXPECT_EQ(textOf("absolute"), "text");
  EXPECT_EQ(files_.sizeInBytes(here_ / "absolute"), 4U);
  EXPECT_THAT(entriesOf("relative"), ElementsAre(Pair("file", FileType::Regular)));
}

TEST_P(FilesContract, FindsNothingBehindALinkThatLeadsNowhere) {
  here_.link("link", "nowhere");

  EXPECT_FALSE(files_.fileExists(here_ / "link"));
  EXPECT_EQ(files_.sizeInBytes(here_ / "link"), std::nullopt);
  EXPECT_EQ(files_.read(here_ / "link").error(), Error::posix(ENOENT));
}

TEST_P(FilesContract, TellsWhatALinkSaysWithoutFollowingIt) {
  here_.link("first", "../some/where else");
  here_.link("second", "first");

  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "first").value(), "../some/where else");
  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "second").value(), "first");
}

TEST_P(FilesContract, SaysWhatIsNoLink) {
  here_.write("file", "");

  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "file").error(), Error::posix(EINVAL));
  EXPECT_EQ(files_.destinationOfSymbolicLink(here_.folder()).error(), Error::posix(EINVAL));
  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "none").error(), Error::posix(ENOENT));
}

TEST_P(FilesContract, CreatesAnEmptyFile) {
  here_.write("old", "text");

  EXPECT_EQ(files_.createFile(here_ / "new"), std::nullopt);
  EXPECT_EQ(files_.createFile(here_ / "old"), std::nullopt);

  EXPECT_EQ(textOf("new"), "");
  EXPECT_EQ(textOf("old"), "");
}

TEST_P(FilesContract, CreatesTheFileThatALinkLeadsTo) {
  here_.link("link", "new");

  EXPECT_EQ(files_.createFile(here_ / "link"), std::nullopt);

  EXPECT_EQ(textOf("new"), "");
  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "link").value(), "new");
}

TEST_P(FilesContract, SaysWhyItCannotCreateAFile) {
  here_.write("file", "");
  here_.pipe("pipe");

  EXPECT_EQ(files_.createFile(here_ / "none/file"), Error::posix(ENOENT));
  EXPECT_EQ(files_.createFile(here_ / "file/inner"), Error::posix(ENOTDIR));
  EXPECT_EQ(files_.createFile(here_.folder()), Error::posix(EISDIR));
  EXPECT_EQ(files_.createFile(here_ / "pipe"), Error::posix(ENXIO));
}

TEST_P(FilesContract, CreatesAFolderWithThoseAboveIt) {
  EXPECT_EQ(files_.createDirectory(here_ / "a/b"), std::nullopt);
  EXPECT_EQ(files_.createDirectory(here_ / "a/b"), std::nullopt);

  EXPECT_THAT(entriesOf(""), ElementsAre(Pair("a", FileType::Directory), Pair("a/b", FileType::Directory)));
}

TEST_P(FilesContract, CreatesAFolderBehindALink) {
  here_.write("real/file", "");
  here_.link("link", "real");

  EXPECT_EQ(files_.createDirectory(here_ / "link/new"), std::nullopt);
  EXPECT_EQ(files_.createDirectory(here_ / "link"), std::nullopt);

  EXPECT_TRUE(files_.fileExists(here_ / "real/new"));
}

TEST_P(FilesContract, CreatesNoFolderWhereAFileIsInTheWay) {
  here_.write("file", "");
  here_.link("broken", "nowhere");

  EXPECT_EQ(files_.createDirectory(here_ / "file"), Error::posix(ENOTDIR));
  EXPECT_EQ(files_.createDirectory(here_ / "file/inner"), Error::posix(ENOTDIR));
  EXPECT_EQ(files_.createDirectory(here_ / "broken"), Error::posix(EEXIST));
}

TEST_P(FilesContract, RemovesAFolderWithAllItHoldsButNotWhatLinksLeadTo) {
  here_.write("kept/file", "precious");
  here_.write("gone/deep/file", "");
  here_.link("gone/link", here_ / "kept");

  EXPECT_EQ(files_.remove(here_ / "gone"), std::nullopt);

  EXPECT_FALSE(files_.fileExists(here_ / "gone/deep"));
  EXPECT_FALSE(files_.fileExists(here_ / "gone"));
  EXPECT_EQ(textOf("kept/file"), "precious");
}

TEST_P(FilesContract, RemovesALinkAndNotWhatItLeadsTo) {
  here_.write("kept/file", "precious");
  here_.link("link", "kept");
  here_.link("broken", "nowhere");

  EXPECT_EQ(files_.remove(here_ / "link"), std::nullopt);
  EXPECT_EQ(files_.remove(here_ / "broken"), std::nullopt);

  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "link").error(), Error::posix(ENOENT));
  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "broken").error(), Error::posix(ENOENT));
  EXPECT_EQ(textOf("kept/file"), "precious");
}

TEST_P(FilesContract, SaysWhyItCannotRemove) {
  here_.write("file", "");

  EXPECT_EQ(files_.remove(here_ / "none"), Error::posix(ENOENT));
  EXPECT_EQ(files_.remove(here_ / "file/inner"), Error::posix(ENOTDIR));
}

TEST_P(FilesContract, MayHaveRemovedAPartOfAFolderWhenItCannotRemoveAll) {
  here_.write("folder/a/file", "");
  here_.write("folder/shut/file", "");
  here_.makeReadOnly("folder/shut");

  EXPECT_EQ(files_.remove(here_ / "folder"), Error::posix(EACCES));

  EXPECT_TRUE(files_.fileExists(here_ / "folder/shut/file"));
}

TEST_P(FilesContract, ChangesNothingThatIsReadOnly) {
  here_.write("file", "text");
  here_.write("shut/file", "text");
  here_.makeReadOnly("file");
  here_.makeReadOnly("shut");

  EXPECT_EQ(files_.createFile(here_ / "file"), Error::posix(EACCES));
  EXPECT_EQ(files_.openForAppending(here_ / "file"), nullptr);
  EXPECT_EQ(files_.createFile(here_ / "shut/new"), Error::posix(EACCES));
  EXPECT_EQ(files_.openForAppending(here_ / "shut/new"), nullptr);
  EXPECT_EQ(files_.createDirectory(here_ / "shut/new"), Error::posix(EACCES));
  EXPECT_EQ(files_.remove(here_ / "shut/file"), Error::posix(EACCES));
  EXPECT_EQ(files_.move(here_ / "shut/file", here_ / "new"), Error::posix(EACCES));
  EXPECT_EQ(files_.move(here_ / "file", here_ / "shut/new"), Error::posix(EACCES));
  EXPECT_THAT(entriesOf("shut"), ElementsAre(Pair("file", FileType::Regular)));
  EXPECT_EQ(textOf("shut/file"), "text");
  EXPECT_EQ(textOf("file"), "text");
}

TEST_P(FilesContract, MovesAFileAndAFolder) {
  here_.write("file", "text");
  here_.write("folder/deep/file", "more");

  EXPECT_EQ(files_.move(here_ / "file", here_ / "renamed"), std::nullopt);
  EXPECT_EQ(files_.move(here_ / "folder", here_ / "moved"), std::nullopt);

  EXPECT_FALSE(files_.fileExists(here_ / "file"));
  EXPECT_FALSE(files_.fileExists(here_ / "folder"));
  EXPECT_EQ(textOf("renamed"), "text");
  EXPECT_EQ(textOf("moved/deep/file"), "more");
}

TEST_P(FilesContract, ReplacesTheTargetOfAMove) {
  here_.write("new", "new");
  here_.write("old", "old");
  here_.write("folder/file", "inner");
  files_.createDirectory(here_ / "empty");

  EXPECT_EQ(files_.move(here_ / "new", here_ / "old"), std::nullopt);
  EXPECT_EQ(files_.move(here_ / "folder", here_ / "empty"), std::nullopt);

  EXPECT_EQ(textOf("old"), "new");
  EXPECT_EQ(textOf("empty/file"), "inner");
}

TEST_P(FilesContract, MovesALinkAndReplacesOneButNotWhatItLeadsTo) {
  here_.write("file", "text");
  here_.write("kept", "precious");
  here_.link("link", "kept");
  here_.link("target", "kept");

  EXPECT_EQ(files_.move(here_ / "link", here_ / "moved"), std::nullopt);
  EXPECT_EQ(files_.move(here_ / "file", here_ / "target"), std::nullopt);

  EXPECT_EQ(files_.destinationOfSymbolicLink(here_ / "moved").value(), "kept");
  EXPECT_EQ(textOf("target"), "text");
  EXPECT_EQ(textOf("kept"), "precious");
}

TEST_P(FilesContract, LeavesWhatIsMovedToItself) {
  here_.write("file", "text");
  here_.link("here", ".");

  EXPECT_EQ(files_.move(here_ / "file", here_ / "here/file"), std::nullopt);

  EXPECT_EQ(textOf("file"), "text");
}

TEST_P(FilesContract, SaysWhyItCannotMove) {
  here_.write("file", "text");
  here_.write("folder/file", "");
  here_.write("full/file", "");

  EXPECT_EQ(files_.move(here_ / "none", here_ / "new"), Error::posix(ENOENT));
  EXPECT_EQ(files_.move(here_ / "file", here_ / "none/new"), Error::posix(ENOENT));
  EXPECT_EQ(files_.move(here_ / "file", here_ / "folder"), Error::posix(EISDIR));
  EXPECT_EQ(files_.move(here_ / "folder", here_ / "file"), Error::posix(ENOTDIR));
  EXPECT_EQ(files_.move(here_ / "folder", here_ / "full"), Error::posix(ENOTEMPTY));
  EXPECT_EQ(files_.move(here_ / "folder", here_ / "folder/inner"), Error::posix(EINVAL));
  EXPECT_EQ(textOf("file"), "text");
}

TEST_P(FilesContract, WalksAFolderWithAllItHolds) {
  here_.write("folder/inner/file", "");
  here_.link("link", "folder");
  here_.pipe("pipe");

  EXPECT_THAT(
      entriesOf(""),
      UnorderedElementsAre(Pair("folder", FileType::Directory), Pair("folder/inner", FileType::Directory),
                           Pair("folder/inner/file", FileType::Regular), Pair("link", FileType::SymbolicLink),
                           Pair("pipe", FileType::Other)));
}

TEST_P(FilesContract, WalksThroughAFolderRightAfterSeeingIt) {
  for (const char* name : {"a/1", "a-b/1", "a b/1"}) here_.write(name, "");

  const auto entries = entriesOf("");

  ASSERT_EQ(entries.size(), 6U);
  for (std::size_t folder = 0; folder < entries.size(); folder += 2) {
    EXPECT_EQ(entries[folder + 1].first, entries[folder].first + "/1");
  }
}

TEST_P(FilesContract, GoesIntoNoFolderThatTheVisitorDeclines) {
  here_.write("folder/file", "");
  std::vector<std::string> seen;

  files_.enumerate(here_.folder(), [&](const DirectoryEntry& entry) {
    seen.push_back(entry.relativePath);
    return false;
  });

  EXPECT_THAT(seen, ElementsAre("folder"));
}

TEST_P(FilesContract, SeesNothingInAFolderThatTheVisitorRemoves) {
  here_.write("folder/file", "");
  std::vector<std::string> seen;

  files_.enumerate(here_.folder(), [&](const DirectoryEntry& entry) {
    seen.push_back(entry.relativePath);
    files_.remove(here_ / entry.relativePath);
    return true;
  });

  EXPECT_THAT(seen, ElementsAre("folder"));
}

TEST_P(FilesContract, SeesNothingInWhatIsNoFolder) {
  here_.write("file", "");

  EXPECT_THAT(entriesOf("file"), IsEmpty());
  EXPECT_THAT(entriesOf("none"), IsEmpty());
}

TEST_P(FilesContract, KeepsTheCreationDateOfWhatIsMoved) {
  here_.write("before", "");
  std::vector<std::optional<platform::Date>> dates;
  const auto note = [&](const DirectoryEntry& entry) {
    dates.push_back(entry.creationDate);
    return true;
  };

  files_.enumerate(here_.folder(), note);
  EXPECT_FALSE(here_.waitUntil([] { return false; }, 0.05));
  files_.move(here_ / "before", here_ / "after");
  files_.enumerate(here_.folder(), note);

  ASSERT_EQ(dates.size(), 2U);
  EXPECT_TRUE(dates[0]);
  EXPECT_EQ(dates[0], dates[1]);
}

TEST_P(FilesContract, AppendsLinesToWhatIsThere) {
  here_.write("log", "old\n");

  const auto stream = files_.openForAppending(here_ / "log");
  stream->writeLine("new");
  stream->writeLine("");
  stream->flush();

  EXPECT_EQ(textOf("log"), "old\nnew\n\n");
}

TEST_P(FilesContract, WritesLinesAtTheLatestWhenTheStreamGoes) {
  files_.openForAppending(here_ / "log")->writeLine("only");

  EXPECT_EQ(textOf("log"), "only\n");
}

TEST_P(FilesContract, KeepsAStreamWithItsFileWhateverItsName) {
  const auto stream = files_.openForAppending(here_ / "log");

  files_.move(here_ / "log", here_ / "old");
  files_.createFile(here_ / "log");
  stream->writeLine("late");
  stream->flush();

  EXPECT_EQ(textOf("old"), "late\n");
  EXPECT_EQ(textOf("log"), "");
}

TEST_P(FilesContract, GoesOnInAFileThatIsCreatedAnew) {
  const auto stream = files_.openForAppending(here_ / "log");
  stream->writeLine("early");
  stream->flush();

  files_.createFile(here_ / "log");
  stream->writeLine("late");
  stream->flush();

  EXPECT_EQ(textOf("log"), "late\n");
}

TEST_P(FilesContract, AppendsThroughALink) {
  here_.link("link", "log");

  files_.openForAppending(here_ / "link")->writeLine("line");

  EXPECT_EQ(textOf("log"), "line\n");
}

TEST_P(FilesContract, OpensNothingForAppendingWhereNoFileCanBe) {
  here_.write("file", "");

  EXPECT_EQ(files_.openForAppending(here_ / "none/log"), nullptr);
  EXPECT_EQ(files_.openForAppending(here_ / "file/log"), nullptr);
  EXPECT_EQ(files_.openForAppending(here_.folder()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Fake, FilesContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, FilesContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
