#include "platform/macos/identifiers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace karno::platform::test {
namespace {

// NSUUID is GNUstep's here, which does not mark its UUIDs as random ones.
TEST(MacIdentifiers, AreUUIDsInCapitalsAndDiffer) {
  FoundationIdentifiers identifiers;

  const std::string first = identifiers.makeUUID();
  const std::string second = identifiers.makeUUID();

  EXPECT_THAT(first,
              ::testing::ContainsRegex("^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}$"));
  EXPECT_NE(first, second);
}

}  // namespace
}  // namespace karno::platform::test
