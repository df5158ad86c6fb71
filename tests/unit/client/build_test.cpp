#include "embedded_client/build.h"

#include <gtest/gtest.h>

namespace karno::client {
namespace {

TEST(ClientBuild, IsTheFileProviderOneInsideKarnoApp) {
  const Build build = buildForBundlePath("/Applications/Karno.app/Contents/Helpers/Karno.app");

  EXPECT_EQ(build, (Build{"Karno.app", "File Provider build"}));
}

TEST(ClientBuild, IsTheMacFUSEOneInsideKarnoFuseApp) {
  const Build build = buildForBundlePath("/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app/");

  EXPECT_EQ(build, (Build{"Karno(Fuse).app", "macFUSE build"}));
}

TEST(ClientBuild, IsUnknownInAnyOtherBundle) {
  const Build build = buildForBundlePath("Trial.app");

  EXPECT_EQ(build, (Build{"Trial.app", "unknown build"}));
}

}  // namespace
}  // namespace karno::client
