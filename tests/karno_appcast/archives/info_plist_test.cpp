#include "karno-appcast/archives/info_plist.h"

#include <gtest/gtest.h>

#include "information_lists.h"

namespace karno::appcast {
namespace {

class InfoPlist : public testing::TestWithParam<karno::test::InformationList> {};

TEST_P(InfoPlist, TellsAFeedWhatTheLauncherFinds) {
  const BundleInfo info = readInfoPlist(GetParam().bytes);

  EXPECT_EQ(info.name, GetParam().name);
  EXPECT_EQ(info.version, GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Each, InfoPlist, testing::ValuesIn(karno::test::informationLists()),
                         [](const auto& each) { return each.param.form; });

}  // namespace
}  // namespace karno::appcast
