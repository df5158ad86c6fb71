#include "system/version_strings.h"

#include <gtest/gtest.h>

#include <ostream>

namespace karno {
namespace {

struct Comparison {
  const char* version;
  const char* other;
  std::int64_t result;
};

void PrintTo(const Comparison& comparison, std::ostream* out) {
  *out << "'" << comparison.version << "' against '" << comparison.other << "'";
}

class CompareToVersion : public ::testing::TestWithParam<Comparison> {};

TEST_P(CompareToVersion, GivesTheOrder) {
  EXPECT_EQ(compareToVersion(GetParam().version, GetParam().other), GetParam().result);
}

TEST_P(CompareToVersion, GivesTheOppositeOrderTheOtherWayRound) {
  EXPECT_EQ(compareToVersion(GetParam().other, GetParam().version), -GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Versions, CompareToVersion,
                         ::testing::Values(Comparison{"4.4.1", "4.4.1", 0}, Comparison{"x.y", "x.y", 0},
                                           Comparison{"4.4", "4.4.0", 0}, Comparison{"4.4", "4.4.1", -1},
                                           Comparison{"4.10", "4.9", 1}, Comparison{"", "0", 0},
                                           Comparison{"", "", 0}, Comparison{"", "0.0.1", -1},
                                           Comparison{"1.2.3-beta", "1.2.3", 0}, Comparison{"1.2b", "1.2", 0},
                                           Comparison{"v4.4.1", "4.4.1", -1}, Comparison{"1.x", "1.0", 0},
                                           Comparison{"1.x", "1.1", -1}, Comparison{"1..2", "1.0.2", 0},
                                           Comparison{"1. 7", "1.7", 0}, Comparison{"1.\t\n+7", "1.7", 0},
                                           Comparison{"1.-7", "1", -1}, Comparison{"1.+-7", "1", 0},
                                           Comparison{"007.1", "7.1", 0}, Comparison{"13.0", "13.0.0", 0},
                                           Comparison{"1.", "1", 0}));

INSTANTIATE_TEST_SUITE_P(BeyondSixtyFourBits, CompareToVersion,
                         ::testing::Values(Comparison{"99999999999999999999", "9223372036854775807", 0},
                                           Comparison{"99999999999999999999", "9223372036854775806", 1},
                                           Comparison{"9223372036854775807", "9223372036854775806", 1},
                                           Comparison{"-99999999999999999999", "-9223372036854775808", 0},
                                           Comparison{"-9223372036854775808", "-9223372036854775807", -1},
                                           Comparison{"9223372036854775808", "9223372036854775807", 0}));

TEST(CompareToNoVersion, ComparesWithZeros) {
  EXPECT_EQ(compareToVersion("1.0", std::nullopt), 1);
  EXPECT_EQ(compareToVersion("0.0", std::nullopt), 0);
  EXPECT_EQ(compareToVersion("", std::nullopt), 0);
  EXPECT_EQ(compareToVersion("-1", std::nullopt), -1);
}

struct Relations {
  const char* version;
  const char* other;
  bool isOlder, isNewer, isEqual, isEqualOrOlder, isEqualOrNewer;
};

class VersionRelations : public ::testing::TestWithParam<Relations> {};

TEST_P(VersionRelations, FollowTheComparison) {
  const Relations& expected = GetParam();

  EXPECT_EQ(isOlderThanVersion(expected.version, expected.other), expected.isOlder);
  EXPECT_EQ(isNewerThanVersion(expected.version, expected.other), expected.isNewer);
  EXPECT_EQ(isEqualToVersion(expected.version, expected.other), expected.isEqual);
  EXPECT_EQ(isEqualOrOlderThanVersion(expected.version, expected.other), expected.isEqualOrOlder);
  EXPECT_EQ(isEqualOrNewerThanVersion(expected.version, expected.other), expected.isEqualOrNewer);
}

INSTANTIATE_TEST_SUITE_P(OlderSameNewer, VersionRelations,
                         ::testing::Values(Relations{"1.1", "1.2", true, false, false, true, false},
                                           Relations{"1.2", "1.2.0", false, false, true, true, true},
                                           Relations{"1.3", "1.2", false, true, false, false, true}));

TEST(MainVersion, IsTheFirstComponents) {
  EXPECT_EQ(getMainVersionWithIntegerCount("4.4.1", 1), "4");
  EXPECT_EQ(getMainVersionWithIntegerCount("4.4.1", 2), "4.4");
  EXPECT_EQ(getMainVersionWithIntegerCount("4.4.1", 3), "4.4.1");
  EXPECT_EQ(getMainVersionWithIntegerCount("", 1), "");
  EXPECT_EQ(getMainVersionWithIntegerCount("1..2", 2), "1.");
}

TEST(MainVersion, IsAbsentWithoutEnoughComponents) {
  EXPECT_EQ(getMainVersionWithIntegerCount("4.4.1", 4), std::nullopt);
  EXPECT_EQ(getMainVersionWithIntegerCount("4.4.1", 0), std::nullopt);
  EXPECT_EQ(getMainVersionWithIntegerCount("4.4.1", -1), std::nullopt);
}

TEST(NeedsToUpdateToVersion, OnlyWithinTheSameMainLine) {
  EXPECT_TRUE(needsToUpdateToVersion("4.4.1", "4.4.2", 2));
  EXPECT_FALSE(needsToUpdateToVersion("4.4.1", "4.5.0", 2));
}

TEST(NeedsToUpdateToVersion, OnlyToANewerOne) {
  EXPECT_FALSE(needsToUpdateToVersion("4.4.1", "4.4.0", 2));
  EXPECT_FALSE(needsToUpdateToVersion("4.4.1", "4.4.1", 2));
}

TEST(NeedsToUpdateToVersion, NeverWithoutAMainLineOfItsOwn) {
  EXPECT_FALSE(needsToUpdateToVersion("4", "4.1", 2));
  EXPECT_FALSE(needsToUpdateToVersion("4.4.1", "4.4.2", 0));
}

TEST(NeedsToUpdateToVersion, AMissingMainLineOfTheOtherCountsAsZero) {
  EXPECT_FALSE(needsToUpdateToVersion("0.1.0", "5", 2));
  EXPECT_TRUE(needsToUpdateToVersion("0.0.1", "5", 2));
}

TEST(NeedsToUpdateToVersion, NeverToAVersionThatIsMissing) {
  EXPECT_FALSE(needsToUpdateToVersion("0.0.1", std::nullopt, 2));
  EXPECT_FALSE(needsToUpdateToVersion("4.4.1", std::nullopt, 2));
}

}  // namespace
}  // namespace karno
