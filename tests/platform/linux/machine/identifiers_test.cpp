#include "platform/linux/machine/identifiers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace karno::platform {
namespace {

// Version 4, variant 1: what RFC 4122 says of random ones.
TEST(RandomIdentifiers, AreRandomUUIDsInCapitals) {
  RandomIdentifiers identifiers;
  std::set<std::string> made;

  for (int count = 0; count < 1000; ++count) made.insert(identifiers.makeUUID());

  EXPECT_THAT(made, testing::Each(testing::ContainsRegex(
                        "^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$")));
}

TEST(RandomIdentifiers, NeverComeTwice) {
  RandomIdentifiers identifiers;
  std::set<std::string> made;

  for (int count = 0; count < 1000; ++count) made.insert(identifiers.makeUUID());

  EXPECT_EQ(made.size(), 1000U);
}

}  // namespace
}  // namespace karno::platform
