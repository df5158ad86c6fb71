#include "platform/file_manager.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "world.h"

namespace karno::test {
namespace {

using platform::Error;

class FileManagerContract : public Contract {
 protected:
  std::string textOf(const std::string& name) const {
    const auto text = services_.files.read(here_ / name);
    return text ? text.value() : text.error().description();
  }
  bool isThere(const std::string& name) const { return services_.files.fileExists(here_ / name); }

  const std::string trash_ = services_.files.homeDirectory() + "/.Trash";
  platform::FileManager& manager_ = services_.fileManager;
};

TEST_P(FileManagerContract, TellsWhatMayBeWritten) {
  here_.write("open/file", "");
  here_.write("shut/file", "");
  here_.write("read", "");
  here_.makeReadOnly("shut");
  here_.makeReadOnly("read");
  here_.link("link", "shut");
  here_.link("broken", "nowhere");

  EXPECT_TRUE(manager_.isWritable(here_ / "open"));
  EXPECT_TRUE(manager_.isWritable(here_ / "open/file"));
  EXPECT_TRUE(manager_.isWritable(here_ / "shut/file"));
  for (const char* name : {"shut", "read", "link", "broken", "none", "open/file/inner"})
    EXPECT_FALSE(manager_.isWritable(here_ / name)) << name;
}

TEST_P(FileManagerContract, ResolvesLinksWhereverTheyAreInAPath) {
  here_.write("real/deep/file", "");
  here_.link("relative", "real/./deep");
  here_.link("absolute", here_ / "relative");

  for (const char* name : {"absolute/file", "relative/file", "absolute/../deep/file", "real//deep/./file"})
    EXPECT_EQ(manager_.resolvingSymbolicLinks(here_ / name), here_ / "real/deep/file") << name;
  EXPECT_EQ(manager_.resolvingSymbolicLinks(here_ / "absolute/"), here_ / "real/deep");
  EXPECT_EQ(manager_.resolvingSymbolicLinks("/"), "/");
}

TEST_P(FileManagerContract, KnowsOneItemByTwoPaths) {
  here_.write("real/file", "");
  here_.write("other/file", "");
  here_.link("link", "real");

  EXPECT_TRUE(manager_.isSameItem(here_ / "link/file", here_ / "real/../real/file"));
  EXPECT_TRUE(manager_.isSameItem(here_ / "link", here_ / "real"));
  EXPECT_FALSE(manager_.isSameItem(here_ / "other/file", here_ / "real/file"));
  EXPECT_FALSE(manager_.isSameItem(here_ / "none", here_ / "none"));
  EXPECT_FALSE(manager_.isSameItem(here_ / "real", here_ / "none"));
}

TEST_P(FileManagerContract, ResolvesNothingWhereNothingIs) {
  here_.write("real/file", "");
  here_.link("link", "real");
  here_.link("broken", "nowhere");
  here_.link("circle", "circle");

  for (const char* name : {"link/none", "broken", "circle", "none/../real", "link//none/"})
    EXPECT_EQ(manager_.resolvingSymbolicLinks(here_ / name), here_ / name) << name;
}

TEST_P(FileManagerContract, StandardisesPathsWithoutALookAtTheDisk) {
  here_.write("real/file", "");
  here_.link("link", "real");

  EXPECT_EQ(manager_.standardising("/Applications//./Old/../Karno.app///"), "/Applications/Karno.app");
  EXPECT_EQ(manager_.standardising("/a/.."), "/");
  EXPECT_EQ(manager_.standardising("/../a/."), "/a");
  EXPECT_EQ(manager_.standardising("/a/..b/...c"), "/a/..b/...c");
  EXPECT_EQ(manager_.standardising("//"), "/");
  EXPECT_EQ(manager_.standardising(here_ / "link/file/.."), here_ / "link");
}

TEST_P(FileManagerContract, CopiesAFolderWithAllItHolds) {
  here_.write("A.app/Contents/file", "text");
  here_.link("A.app/Contents/link", "file");
  here_.link("A.app/broken", "/nowhere");

  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "B.app"), std::nullopt);

  EXPECT_EQ(textOf("B.app/Contents/file"), "text");
  EXPECT_EQ(services_.files.destinationOfSymbolicLink(here_ / "B.app/Contents/link").value(), "file");
  EXPECT_EQ(services_.files.destinationOfSymbolicLink(here_ / "B.app/broken").value(), "/nowhere");
  EXPECT_EQ(textOf("A.app/Contents/file"), "text");
}

TEST_P(FileManagerContract, CopiesAFileAndALink) {
  here_.write("file", "text");
  here_.link("link", "file");

  EXPECT_EQ(manager_.copyItem(here_ / "file", here_ / "copy"), std::nullopt);
  EXPECT_EQ(manager_.copyItem(here_ / "link", here_ / "second"), std::nullopt);
  services_.files.createFile(here_ / "file");

  EXPECT_EQ(textOf("copy"), "text");
  EXPECT_EQ(services_.files.destinationOfSymbolicLink(here_ / "second").value(), "file");
}

TEST_P(FileManagerContract, CopiesThatAFolderIsReadOnly) {
  here_.write("A.app/shut/file", "text");
  here_.makeReadOnly("A.app/shut");

  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "B.app"), std::nullopt);

  EXPECT_EQ(textOf("B.app/shut/file"), "text");
  EXPECT_FALSE(manager_.isWritable(here_ / "B.app/shut"));
  EXPECT_TRUE(manager_.isWritable(here_ / "B.app"));
}

TEST_P(FileManagerContract, CopiesOverNothing) {
  here_.write("A.app/file", "new");
  here_.write("B.app/file", "old");
  here_.link("broken", "nowhere");

  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "B.app"), Error::posix(EEXIST));
  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "broken"), Error::posix(EEXIST));

  EXPECT_EQ(textOf("B.app/file"), "old");
  EXPECT_FALSE(isThere("nowhere"));
}

TEST_P(FileManagerContract, SaysWhyItCannotCopy) {
  here_.write("A.app/file", "text");
  here_.write("file", "");
  here_.write("shut/file", "");
  here_.pipe("pipe");
  here_.makeReadOnly("shut");

  EXPECT_EQ(manager_.copyItem(here_ / "none", here_ / "B.app"), Error::posix(ENOENT));
  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "none/B.app"), Error::posix(ENOENT));
  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "file/B.app"), Error::posix(ENOTDIR));
  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "A.app/B.app"), Error::posix(EINVAL));
  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "shut/B.app"), Error::posix(EACCES));
  EXPECT_EQ(manager_.copyItem(here_ / "pipe", here_ / "B.app"), Error::posix(ENOTSUP));
  EXPECT_FALSE(isThere("A.app/B.app"));
}

TEST_P(FileManagerContract, LeavesNothingOfACopyThatItCannotFinish) {
  here_.write("A.app/file", "text");
  here_.pipe("A.app/pipe");

  EXPECT_EQ(manager_.copyItem(here_ / "A.app", here_ / "B.app"), Error::posix(ENOTSUP));

  EXPECT_FALSE(isThere("B.app"));
  EXPECT_EQ(textOf("A.app/file"), "text");
}

TEST_P(FileManagerContract, MovesToATrashThatNeedNotBeThere) {
  here_.write("A.app/file", "text");

  EXPECT_EQ(manager_.trashItem(here_ / "A.app"), std::nullopt);

  EXPECT_FALSE(isThere("A.app"));
  EXPECT_EQ(textOf(trash_ + "/A.app/file"), "text");
}

TEST_P(FileManagerContract, GivesWhatItTrashesANameThatIsFree) {
  here_.write(trash_ + "/A.app/file", "first");
  here_.link(trash_ + "/A 2.app", "nowhere");
  here_.write("A.app/file", "third");
  here_.write(trash_ + "/name", "");
  here_.write("name", "other");

  EXPECT_EQ(manager_.trashItem(here_ / "A.app"), std::nullopt);
  EXPECT_EQ(manager_.trashItem(here_ / "name"), std::nullopt);

  EXPECT_EQ(textOf(trash_ + "/A.app/file"), "first");
  EXPECT_EQ(textOf(trash_ + "/A 3.app/file"), "third");
  EXPECT_EQ(textOf(trash_ + "/name 2"), "other");
}

TEST_P(FileManagerContract, TrashesALinkAndNotWhatItLeadsTo) {
  here_.write("kept", "precious");
  here_.link("link", "kept");

  EXPECT_EQ(manager_.trashItem(here_ / "link"), std::nullopt);

  EXPECT_EQ(services_.files.destinationOfSymbolicLink(trash_ + "/link").value(), "kept");
  EXPECT_EQ(textOf("kept"), "precious");
}

TEST_P(FileManagerContract, SaysWhyItCannotTrash) {
  here_.write("shut/file", "text");
  here_.makeReadOnly("shut");

  EXPECT_EQ(manager_.trashItem(here_ / "none"), Error::posix(ENOENT));
  EXPECT_EQ(manager_.trashItem(here_ / "shut/file"), Error::posix(EACCES));
  EXPECT_EQ(textOf("shut/file"), "text");
}

TEST_P(FileManagerContract, TrashesNothingWhereAFileStandsForTheTrash) {
  here_.write(trash_, "a file");
  here_.write("file", "text");

  EXPECT_EQ(manager_.trashItem(here_ / "file"), Error::posix(ENOTDIR));
  EXPECT_EQ(textOf("file"), "text");
}

INSTANTIATE_TEST_SUITE_P(Fake, FileManagerContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, FileManagerContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
