#include "karnoctl/report/disguise.h"

#include <gtest/gtest.h>

#include "fake_platform.h"

namespace karno::karnoctl {
namespace {

TEST(Disguise, TakesTheHomeFolderOutOfATextInEverySpelling) {
  const test::FakePlatform machine;
  const Disguise disguise({"/Users/jo doe"}, {});

  EXPECT_EQ(disguise.of("cannot read /Users/jo doe/Library: no, /Users/jo doe."),
            "cannot read ~/Library: no, ~.");
  EXPECT_EQ(disguise.of("file:///Users/jo%20doe/Library"), "file://~/Library");
  EXPECT_EQ(disguise.of(R"({"path":"\/Users\/jo doe\/x"})"), R"({"path":"~\/x"})");
}

TEST(Disguise, TakesTheNameOutWhereItIsAWord) {
  const test::FakePlatform machine;
  const Disguise disguise({}, {"jo"});

  EXPECT_EQ(disguise.of("jo's Mac, Karno_jo-mac.local: jo"), "USER's Mac, Karno_USER-mac.local: USER");
  EXPECT_EQ(disguise.of("major job jo2 mjo joé"), "major job jo2 mjo joé");
}

TEST(Disguise, LeavesTheHomeFolderOfSomebodyElse) {
  const test::FakePlatform machine;
  const Disguise disguise({"/Users/jo"}, {"jo"});

  EXPECT_EQ(disguise.of("/Users/jo2/x /Users/jo/x"), "/Users/jo2/x ~/x");
}

TEST(Disguise, BearsBytesThatAreNoText) {
  const test::FakePlatform machine;
  const Disguise disguise({"/Users/jo"}, {"jo"});
  const std::string noise("\0\xFFjo\0/Users/jo", 14);

  EXPECT_EQ(disguise.of(noise), std::string("\0\xFFjo\0~", 6));
}

TEST(Disguise, ReplacesNothingWithoutANameOrAHome) {
  const test::FakePlatform machine;
  const Disguise disguise({"", "/"}, {""});

  EXPECT_EQ(disguise.of("/Users/jo"), "/Users/jo");
}

}  // namespace
}  // namespace karno::karnoctl
