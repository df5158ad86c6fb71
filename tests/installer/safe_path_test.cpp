#include "installer/archive/safe_path.h"

#include <gmock/gmock.h>

#include "elements_are.h"

namespace karno::installer {
namespace {

using karno::test::ElementsAre;
using namespace std::string_literals;

// "ready a/b", or the failure's text.
std::string said(std::string_view name, const UnpackLimits& limits = {}) {
  const auto path = safePath(name, limits);
  return path ? "ready " + joined(path.value()) : path.error().text;
}

std::string refusal(const std::string& name, const std::string& reason) {
  return "The archive holds the name \"" + name + "\", which " + reason + ".";
}

TEST(SafePath, IsTheNamesBetweenTheSlashes) {
  EXPECT_THAT(safePath("a/b c/d.app", {}).value(), ElementsAre("a", "b c", "d.app"));
}

TEST(SafePath, DropsDotsAndNeedlessSlashes) {
  EXPECT_EQ(said("./a//b/./c/"), "ready a/b/c");
  EXPECT_EQ(said("./"), "ready ");
  EXPECT_EQ(said("."), "ready ");
}

TEST(SafePath, KeepsNamesThatOnlyResembleDots) {
  EXPECT_EQ(said("..."), "ready ...");
  EXPECT_EQ(said("..a/b.."), "ready ..a/b..");
  EXPECT_EQ(said(".hidden"), "ready .hidden");
  EXPECT_EQ(said("a\\..\\b"), "ready a\\..\\b");
}

TEST(SafePath, RefusesAbsoluteNames) {
  EXPECT_EQ(said("/a"), refusal("/a", "is absolute"));
  EXPECT_EQ(said("//a"), refusal("//a", "is absolute"));
  EXPECT_EQ(said("/"), refusal("/", "is absolute"));
}

TEST(SafePath, RefusesTheParentFolderAnywhere) {
  EXPECT_EQ(said(".."), refusal("..", "leads out of its folder"));
  EXPECT_EQ(said("../a"), refusal("../a", "leads out of its folder"));
  EXPECT_EQ(said("a/../b"), refusal("a/../b", "leads out of its folder"));
  EXPECT_EQ(said("a/.."), refusal("a/..", "leads out of its folder"));
  EXPECT_EQ(said("a/./..//b"), refusal("a/./..//b", "leads out of its folder"));
}

TEST(SafePath, RefusesWhatIsNoName) {
  EXPECT_EQ(said(""), refusal("", "is empty"));
  EXPECT_EQ(said("a\0b"s), refusal("a?b", "holds a zero byte"));
  EXPECT_EQ(said("a/\xFFz"), refusal("a/?z", "is not UTF-8"));
  EXPECT_EQ(said("a/\xC0\xAE\xC0\xAE/b"), refusal("a/?"
                                                  "?"
                                                  "?"
                                                  "?/b",
                                                  "is not UTF-8"));
}

TEST(SafePath, TakesNamesUpToItsLimits) {
  const UnpackLimits limits{.nameBytesMax = 6, .depthMax = 3};

  EXPECT_EQ(said("a/b/c", limits), "ready a/b/c");
  EXPECT_EQ(said("a/./b/", limits), "ready a/b");
  EXPECT_EQ(said("abcdef", limits), "ready abcdef");
  EXPECT_EQ(said("abcdefg", limits), refusal("abcdefg", "is too long"));
  EXPECT_EQ(said("a/b/c/", {.nameBytesMax = 6, .depthMax = 2}), refusal("a/b/c/", "is too deep"));
}

TEST(SafePath, PassesOverWhatAMacsArchiverAdds) {
  EXPECT_TRUE(isPassedOver({"__MACOSX"}, false));
  EXPECT_TRUE(isPassedOver({"__MACOSX", "Karno.app", "a"}, true));
  EXPECT_TRUE(isPassedOver({"Karno.app", "._Info.plist"}, true));
  EXPECT_TRUE(isPassedOver({"._Karno.app"}, true));
  EXPECT_TRUE(isPassedOver({}, false));
}

TEST(SafePath, PassesOverNothingElse) {
  EXPECT_FALSE(isPassedOver({"Karno.app", "__MACOSX"}, false));
  EXPECT_FALSE(isPassedOver({"Karno.app", "._folder"}, false));
  EXPECT_FALSE(isPassedOver({"Karno.app", ".DS_Store"}, true));
  EXPECT_FALSE(isPassedOver({"Karno.app", "_._"}, true));
}

TEST(LinksInsideABundle, MayLeadAnywhereInIt) {
  EXPECT_TRUE(staysInside({"A.app", "link"}, "file", {}));
  EXPECT_TRUE(staysInside({"A.app", "link"}, ".", {}));
  EXPECT_TRUE(staysInside({"A.app", "link"}, "a/b/c", {}));
  EXPECT_TRUE(staysInside({"A.app", "a", "link"}, "..", {}));
  EXPECT_TRUE(staysInside({"A.app", "a", "b", "link"}, "../../c/d", {}));
  EXPECT_TRUE(staysInside({"A.app", "a", "b", "link"}, ".././..//c", {}));
}

TEST(LinksInsideABundle, MayNotLeadOutOfIt) {
  EXPECT_FALSE(staysInside({"A.app", "link"}, "..", {}));
  EXPECT_FALSE(staysInside({"A.app", "link"}, "../B.app", {}));
  EXPECT_FALSE(staysInside({"A.app", "link"}, "./../A.app/file", {}));
  EXPECT_FALSE(staysInside({"A.app", "a", "link"}, "../..", {}));
  EXPECT_FALSE(staysInside({"A.app", "a", "link"}, "../../../../etc/passwd", {}));
  EXPECT_FALSE(staysInside({"A.app", "link"}, "/etc/passwd", {}));
  EXPECT_FALSE(staysInside({"A.app", "link"}, "/", {}));
}

// With "deep/down" a link to "." the real place of "deep/down/.." would be a level above the written one.
TEST(LinksInsideABundle, MayNotGoUpFromANameThatMayBeALinkItself) {
  EXPECT_FALSE(staysInside({"A.app", "link"}, "deep/down/..", {}));
  EXPECT_FALSE(staysInside({"A.app", "a", "b", "link"}, "../c/..", {}));
}

TEST(LinksInsideABundle, AreRefusedWithoutADestinationOrAtTheTop) {
  EXPECT_FALSE(staysInside({"A.app", "link"}, "", {}));
  EXPECT_FALSE(staysInside({"A.app", "link"}, "a\0b"s, {}));
  EXPECT_FALSE(staysInside({"A.app"}, "B.app", {}));
  EXPECT_FALSE(staysInside({}, "a", {}));
  EXPECT_FALSE(staysInside({"A.app", "link"}, "abcdefg", {.nameBytesMax = 6}));
}

}  // namespace
}  // namespace karno::installer
