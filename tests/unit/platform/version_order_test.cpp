#include "platform/version_order.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <ostream>

namespace karno::platform {
namespace {

struct Pair {
  const char* one;
  const char* other;
};

void PrintTo(const Pair& pair, std::ostream* out) { *out << pair.one << " and " << pair.other; }

class OlderVersion : public ::testing::TestWithParam<Pair> {};

TEST_P(OlderVersion, ComesFirst) {
  EXPECT_TRUE(compareVersions(GetParam().one, GetParam().other) < 0);
  EXPECT_TRUE(compareVersions(GetParam().other, GetParam().one) > 0);
}

INSTANTIATE_TEST_SUITE_P(Pairs, OlderVersion,
                         ::testing::Values(Pair{"1", "2"}, Pair{"1.9", "1.10"}, Pair{"0.89", "1.0a3"},
                                           Pair{"1.0a3", "1.0"}, Pair{"1.0a3", "1.0b1"},
                                           Pair{"1.0b1", "1.0b2"}, Pair{"1.0b9", "1.0b10"},
                                           Pair{"1.0", "1.0.1"}, Pair{"1.0rc1", "1.0.1"}, Pair{"", "1"},
                                           Pair{"1.0-beta", "1.0"}, Pair{"9", "10000000000000000000000"},
                                           Pair{"1.2.3", "1.2.4"}, Pair{"1.2.3.4", "1.2.4"},
                                           Pair{"2.0.0a", "2"}));

class SameVersion : public ::testing::TestWithParam<Pair> {};

TEST_P(SameVersion, IsNeither) {
  EXPECT_TRUE(compareVersions(GetParam().one, GetParam().other) == 0);
  EXPECT_TRUE(compareVersions(GetParam().other, GetParam().one) == 0);
}

INSTANTIATE_TEST_SUITE_P(Pairs, SameVersion,
                         ::testing::Values(Pair{"1", "1"}, Pair{"2.1", "2.1.0"}, Pair{"1.0.0.0", "1"},
                                           Pair{"", ""}, Pair{"007", "7"}, Pair{"0", ""},
                                           Pair{"1.0-1", "1.0.1"}, Pair{" 1.0 ", "1.0"}));

TEST(VersionParts, AreZeroWhereThereIsNoNumber) {
  using Parts = std::array<int, 3>;

  EXPECT_EQ(versionParts("10.14.6"), (Parts{10, 14, 6}));
  EXPECT_EQ(versionParts("13"), (Parts{13, 0, 0}));
  EXPECT_EQ(versionParts("12.x.1"), (Parts{12, 0, 1}));
  EXPECT_EQ(versionParts(""), (Parts{0, 0, 0}));
}

TEST(VersionParts, EndAtTheLargestNumber) {
  EXPECT_EQ(versionParts("99999999999.1").front(), std::numeric_limits<int>::max());
}

}  // namespace
}  // namespace karno::platform
