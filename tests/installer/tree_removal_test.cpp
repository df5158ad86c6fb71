#include "installer/tree_removal.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "temporary_folder.h"

namespace karno::installer {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

// The path of as many folders, each in the one before, inside "tree".
std::string makeDeepTree(const TemporaryFolder& place, int depth) {
  std::string path = place / "tree";
  for (int level = 1; level < depth; ++level) path += "/d";
  fs::create_directories(path);
  return path;
}

TEST(TreeRemoval, ReachesFoldersOfEveryDepthThatItKnows) {
  const TemporaryFolder place;
  makeDeepTree(place, kRemovedDepthMax);

  EXPECT_EQ(removeTree(place / "tree"), 0);

  EXPECT_TRUE(fs::is_empty(place.path()));
}

TEST(TreeRemoval, LeavesDeeperFoldersButNothingElse) {
  const TemporaryFolder place;
  const std::string deepest = makeDeepTree(place, kRemovedDepthMax + 1);
  place.write("tree/a", "a");
  place.write("tree/z", "z");

  EXPECT_EQ(removeTree(place / "tree"), ELOOP);

  EXPECT_TRUE(fs::exists(deepest));
  EXPECT_FALSE(fs::exists(place / "tree/a"));
  EXPECT_FALSE(fs::exists(place / "tree/z"));
}

// Whichever of the two comes first, the other is looked at as well.
TEST(TreeRemoval, GoesOnBehindAFolderThatStays) {
  const TemporaryFolder place;
  for (const std::string name : {"tree/one", "tree/other"}) {
    std::string deep = place / name;
    for (int level = 0; level < kRemovedDepthMax; ++level) deep += "/d";
    fs::create_directories(deep);
    place.write(name + "/file", "x");
  }

  EXPECT_EQ(removeTree(place / "tree"), ELOOP);

  EXPECT_FALSE(fs::exists(place / "tree/one/file"));
  EXPECT_FALSE(fs::exists(place / "tree/other/file"));
}

TEST(TreeRemoval, OfNothingIsDoneAlready) {
  const TemporaryFolder place;

  EXPECT_EQ(removeTree(place / "tree"), 0);
}

}  // namespace
}  // namespace karno::installer
